// SPDX-License-Identifier: MIT
#include "tests/detection/ReferenceDetection.h"

#include "tests/detection/Frames.h"

#include <set>
#include <utility>

namespace reference {

std::vector<WalkStep> walk(int width, int startX, int startY, int step, qsizetype steps)
{
    std::vector<WalkStep> walked;
    int x = startX;
    int y = startY;
    for (qsizetype i = 0; i < steps; ++i) {
        walked.push_back({x, y, qsizetype{y} * width + x});
        x += step;
        if (x > width) {
            x = startX;
            y += step;
        }
    }
    return walked;
}

namespace {

void addHotpixelsOfPlane(std::vector<QPoint>& found, const std::vector<WalkStep>& steps,
                         const QVector<QImage>& frames, int threshold)
{
    std::vector<std::uint32_t> means;
    for (const WalkStep& step : steps) {
        std::uint32_t sum = 0;
        for (const QImage& frame : frames) {
            sum += frame.constBits()[step.byte];
        }
        means.push_back(sum / static_cast<std::uint32_t>(frames.size()));
    }

    std::uint32_t sumOfMeans = 0;
    for (const std::uint32_t mean : means) {
        sumOfMeans += mean;
    }
    const std::uint32_t limit = sumOfMeans / static_cast<std::uint32_t>(means.size()) +
                                static_cast<std::uint32_t>(threshold);

    for (std::size_t i = 0; i < steps.size(); ++i) {
        if (means[i] > limit) {
            found.emplace_back(steps[i].x, steps[i].y);
        }
    }
}

} // namespace

std::vector<QPoint> hotpixels(int colorMode, const QVector<QImage>& frames, int threshold)
{
    const int width = frames.first().width();
    const int height = frames.first().height();
    std::vector<QPoint> found;
    if (colorMode == Mono8) {
        const std::vector<WalkStep> steps = walk(width, 0, 0, 1, qsizetype{width} * height);
        addHotpixelsOfPlane(found, steps, frames, threshold);
        return found;
    }
    const qsizetype elements = qsizetype{width / 2} * (height / 2);
    for (const auto& [startX, startY] :
         {std::pair{0, 0}, std::pair{0, 1}, std::pair{1, 0}, std::pair{1, 1}}) {
        addHotpixelsOfPlane(found, walk(width, startX, startY, 2, elements), frames, threshold);
    }
    return found;
}

std::vector<QPoint> withoutDuplicates(const std::vector<QPoint>& positions)
{
    std::vector<QPoint> kept;
    std::set<std::pair<int, int>> seen;
    for (const QPoint& position : positions) {
        if (seen.emplace(position.x(), position.y()).second) {
            kept.push_back(position);
        }
    }
    return kept;
}

} // namespace reference
