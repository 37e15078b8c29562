// SPDX-License-Identifier: MIT
#include "cli/ExactDetection.h"

#include "camera/CameraSdk.h"
#include "cli/Command.h"
#include "detection/HotpixelDetector.h"
#include "hotpixel/BadpixelListModel.h"
#include "hotpixel/ListFull.h"

#include <QCoreApplication>

#include <limits>
#include <set>

namespace {

/// Where these texts belong.
struct Text
{
    Q_DECLARE_TR_FUNCTIONS(ExactDetection)
};

QString tooManyText(const ListFull& error, std::size_t found)
{
    return Text::tr("%1 The frames hold %2 hotpixels; none was taken over.")
        .arg(QString::fromUtf8(error.what()))
        .arg(found);
}

} // namespace

namespace cli {

ExactDetection::ExactDetection(const DarkFrames& frames, const HotRule& rule, bool withFlickering)
    : survey(Survey::of(frames.stack, frames.mosaic))
    , findings(Findings::of(frames.stack, survey, rule))
    , found(findings.pixels.hot)
{
    if (withFlickering) {
        const auto& flickering = findings.pixels.flickering;
        found.insert(found.end(), flickering.begin(), flickering.end());
    }
}

LiveDetection::Result addFound(std::span<const PixelPosition> found, BadpixelListModel& list)
{
    std::set<PixelPosition> known;
    for (const BadpixelEntry& entry : list.entries()) {
        known.insert({entry.x, entry.y});
    }
    try {
        for (const PixelPosition& pixel : found) {
            // A list that is full takes no pixel that it holds, either.
            if (!known.contains(pixel)) {
                list.addBadpixel(QPoint(pixel.x, pixel.y));
            }
        }
    } catch (const ListFull& error) {
        LiveDetection::Result result;
        result.outcome = LiveDetection::Outcome::TooMany;
        result.foundWithoutLimit = static_cast<int>(found.size());
        result.message = tooManyText(error, found.size());
        return result;
    }
    return {};
}

void detectLikeEditor(const DarkFrames& frames, int threshold, BadpixelListModel& list)
{
    const DarkStack& stack = frames.stack;
    if (stack.info().bitsPerPixel != 8) {
        throw CommandError(
            Text::tr("The editor takes frames of 8 bits: --like-editor needs them."));
    }
    // The editor adds up bytes and divides by the number of frames, wherever its walk takes them
    // from; so one frame of those means gives what all frames give. Its rows have no padding, as a
    // camera's.
    QByteArray means;
    means.reserve(static_cast<qsizetype>(stack.pixelCount()));
    for (const std::uint32_t sum : stack.sums()) {
        means.append(static_cast<char>(sum / stack.frameCount()));
    }
    const auto width = static_cast<int>(stack.info().width);
    const QVector<QImage> images{QImage(reinterpret_cast<const uchar*>(means.constData()), width,
                                        static_cast<int>(stack.info().height), width,
                                        QImage::Format_Indexed8)};
    list.setMaxUserEntries(std::numeric_limits<int>::max());
    HotpixelDetector detector(threshold);
    detector.setImages(frames.mosaic.isBayer() ? camera::ColorModeBayer8 : camera::ColorModeMono8,
                       &images);
    detector.detect(&list);
}

} // namespace cli
