// SPDX-License-Identifier: MIT
#include "tests/accuracy/AccuracyTrial.h"

#include "darkframes/Survey.h"
#include "detection/HotpixelDetector.h"
#include "hotpixel/BadpixelListModel.h"
#include "tests/accuracy/SimulatedDefects.h"

#include <cmath>
#include <set>
#include <utility>
#include <vector>

namespace {

using Position = std::pair<std::uint32_t, std::uint32_t>;

constexpr int Mono = 6;
constexpr int Bayer = 11;

/// The editor's list.
std::set<Position> listOfEditor(const QVector<QImage>& frames, const Mosaic& mosaic,
                                std::uint32_t threshold)
{
    BadpixelListModel list;
    list.setMaxUserEntries(frames.front().width() * frames.front().height());
    HotpixelDetector detector(static_cast<int>(threshold));
    detector.setImages(mosaic.isBayer() ? Bayer : Mono, &frames);
    detector.detect(&list);
    std::set<Position> positions;
    for (int row = 0; row < list.rowCount(); ++row) {
        const BadpixelEntry entry = list.badpixelAt(row);
        positions.emplace(entry.x, entry.y);
    }
    return positions;
}

/// The editor's way through a plane: a row ends behind its last pixel and not at it, and the way
/// ends after as many steps as the plane has pixels.
class Walk
{
public:
    Walk(const SensorPlane& plane, std::uint32_t width, std::uint32_t height)
        : m_plane(plane)
        , m_stepsInRow((width - plane.x) / plane.step + 1)
        , m_steps(std::uint64_t{width / plane.step} * (height / plane.step))
    {}

    [[nodiscard]] bool reaches(const Position& position) const
    {
        const std::uint64_t row = (position.second - m_plane.y) / m_plane.step;
        return row * m_stepsInRow + (position.first - m_plane.x) / m_plane.step < m_steps;
    }

    /// The mean on the way, of whole numbers and cut to one.
    [[nodiscard]] std::uint64_t mean(const DarkStack& stack) const
    {
        const std::uint32_t width = stack.info().width;
        std::uint64_t sum = 0;
        std::uint64_t x = m_plane.x;
        std::uint64_t y = m_plane.y;
        for (std::uint64_t i = 0; i < m_steps; ++i) {
            sum += stack.sums()[y * width + x] / stack.frameCount();
            x += m_plane.step;
            if (x > width) {
                x = m_plane.x;
                y += m_plane.step;
            }
        }
        return sum / m_steps;
    }

private:
    SensorPlane m_plane;
    std::uint64_t m_stepsInRow;
    std::uint64_t m_steps;
};

/// Knows of each pixel whether it is clearly hot or clearly not.
class Judge
{
public:
    Judge(const SimulatedDefects& sensor, const Survey& survey, std::uint32_t threshold)
        : m_sensor(sensor)
        , m_survey(survey)
        , m_threshold(threshold)
    {}

    /// How many standard errors the true mean lies above the least mean of a hot pixel.
    [[nodiscard]] double errorsAbove(std::uint32_t x, std::uint32_t y) const
    {
        const PlaneStatistics& plane = m_survey.searchPlanes()[m_survey.mosaic.planeOf(x, y)];
        const SimulatedDefects::Truth truth = m_sensor.truth(x, y);
        const double above = truth.mean - (plane.wholeMean + m_threshold + 1.0);
        const double error = truth.deviation / std::sqrt(m_survey.frames);
        if (error > 0) {
            return above / error;
        }
        return above >= 0 ? HUGE_VAL : -HUGE_VAL;
    }

    [[nodiscard]] Accuracy judge(const std::set<Position>& reported) const
    {
        Accuracy accuracy;
        for (const Position& position : reported) {
            const bool isPixel = position.first < m_survey.info.width;
            const double errors =
                isPixel ? errorsAbove(position.first, position.second) : -HUGE_VAL;
            (errors > Clear    ? accuracy.found
             : errors < -Clear ? accuracy.reportedFalsely
                               : accuracy.unclear) += 1;
        }
        for (const PixelPosition& pixel : m_sensor.defects()) {
            if (errorsAbove(pixel.x, pixel.y) > Clear) {
                ++accuracy.clearHot;
                accuracy.missed += reported.contains({pixel.x, pixel.y}) ? 0U : 1U;
            }
        }
        return accuracy;
    }

private:
    static constexpr double Clear = 5;

    const SimulatedDefects& m_sensor;
    const Survey& m_survey;
    std::uint32_t m_threshold;
};

Differences explain(const DarkStack& stack, const Survey& survey, const std::set<Position>& exact,
                    const std::set<Position>& likeEditor)
{
    std::vector<Walk> walks;
    std::vector<bool> hasOtherMean;
    for (const PlaneStatistics& plane : survey.searchPlanes()) {
        walks.emplace_back(plane.plane, survey.info.width, survey.info.height);
        hasOtherMean.push_back(walks.back().mean(stack) != plane.wholeMean);
    }
    Differences differences;
    const auto explainOne = [&](const Position& position, bool isReached) {
        const std::size_t plane = survey.mosaic.planeOf(position.first, position.second);
        (!isReached            ? differences.endLeftOut
         : hasOtherMean[plane] ? differences.otherLimit
                               : differences.unexplained) += 1;
    };
    for (const Position& position : exact) {
        if (!likeEditor.contains(position)) {
            explainOne(
                position,
                walks[survey.mosaic.planeOf(position.first, position.second)].reaches(position));
        }
    }
    for (const Position& position : likeEditor) {
        if (position.first == survey.info.width) {
            ++differences.behindRows;
        } else if (!exact.contains(position)) {
            explainOne(position, true);
        }
    }
    return differences;
}

} // namespace

double Accuracy::precision() const
{
    const std::uint64_t reported = found + reportedFalsely;
    return reported == 0 ? 1 : static_cast<double>(found) / static_cast<double>(reported);
}

double Accuracy::recall() const
{
    return clearHot == 0 ? 1 : static_cast<double>(found) / static_cast<double>(clearHot);
}

void AccuracyTrial::run()
{
    SimulatedDefects sensor(width, height, seed, threshold);
    DarkStack stack({width, height, 8});
    QVector<QImage> frames;
    for (int i = 0; i < SimulatedDefects::Frames; ++i) {
        const QImage frame = sensor.takeFrame();
        stack.add(std::span(&frame, 1));
        // The editor takes the bytes of an image for one run, so its rows must have no padding.
        QImage packed(static_cast<int>(width), static_cast<int>(height), QImage::Format_Indexed8);
        if (packed.bytesPerLine() != static_cast<qsizetype>(width)) {
            qFatal("The width of a simulated sensor has to be divisible by four.");
        }
        std::copy_n(frame.constBits(), frame.sizeInBytes(), packed.bits());
        frames.append(packed);
    }

    const Survey survey = Survey::of(stack, mosaic);
    const Findings findings = Findings::of(stack, survey, {threshold, std::nullopt});
    std::set<Position> exactPositions;
    for (const PixelPosition& pixel : findings.pixels.hot) {
        exactPositions.emplace(pixel.x, pixel.y);
    }
    const std::set<Position> editorPositions = listOfEditor(frames, mosaic, threshold);

    const Judge judge(sensor, survey, threshold);
    exact = judge.judge(exactPositions);
    likeEditor = judge.judge(editorPositions);
    differences = explain(stack, survey, exactPositions, editorPositions);
}
