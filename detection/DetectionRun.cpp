// SPDX-License-Identifier: MIT
#include "detection/DetectionRun.h"

#include "detection/HotpixelDetector.h"
#include "hotpixel/BadpixelListModel.h"
#include "hotpixel/ListFull.h"

#include <algorithm>
#include <cstddef>
#include <exception>
#include <span>

namespace {

/// The value that the progress bar was last given; one for the whole program.
int progress = 0;

/// A copy of its own, since the camera goes on writing into the memory behind its image. Padding
/// that the image's lines do not have is 0: the darkness check and the detector read it.
QImage deepCopy(const QImage& image)
{
    QImage copy = image.copy();
    for (int y = 0; y < copy.height(); ++y) {
        for (qsizetype i = image.bytesPerLine(); i < copy.bytesPerLine(); ++i) {
            copy.scanLine(y)[i] = 0;
        }
    }
    return copy;
}

/// So few bytes are counted in a byte, which lets the compiler count 16 at a time.
constexpr std::size_t CountedTogether = 240;

int brightBytes(std::span<const uchar> bytes)
{
    quint8 bright = 0;
    for (const uchar byte : bytes) {
        bright = static_cast<quint8>(bright + (byte > DetectionRun::BrightLevel ? 1 : 0));
    }
    return bright;
}

} // namespace

DetectionRun::DetectionRun(BadpixelListModel& list, QObject* parent)
    : QObject(parent)
    , m_list(list)
{}

void DetectionRun::start(bool clear, int threshold)
{
    m_threshold = threshold;
    if (clear) {
        m_list.clearUserBadpixelList();
    }
    m_running = true;
}

void DetectionRun::cancel()
{
    m_frames.clear();
    stopCollecting();
}

DetectionRun::Step DetectionRun::addFrame(const QImage& image)
{
    if (!m_running) {
        return Step::Idle;
    }
    if (m_frames.size() >= FrameCount) {
        stopCollecting();
        return Step::Ready;
    }
    const QImage frame = deepCopy(image);
    m_frames.append(frame);
    progress += ProgressStep;
    emit progressed(progress);
    if (!isDark(frame)) {
        cancel();
        return Step::NotDark;
    }
    return Step::Collected;
}

void DetectionRun::evaluate(int colorMode)
{
    {
        HotpixelDetector detector(m_threshold);
        connect(&detector, &HotpixelDetector::detectionFinished, this,
                &DetectionRun::detectionFinished);
        try {
            detector.setImages(colorMode, &m_frames);
            mergeHotpixels(detector);
        } catch (const std::exception& e) {
            if (dynamic_cast<const ListFull*>(&e) != nullptr) {
                emit listFull(QString::fromUtf8(e.what()));
            }
            BadpixelListModel unlimited;
            unlimited.setLimitByCamera(false);
            detector.detect(&unlimited);
            emit foundWithoutLimit(unlimited.rowCount());
            emit failed(QString::fromUtf8(e.what()));
        }
    }
    m_frames.clear();
    emit finished();
}

void DetectionRun::mergeHotpixels(HotpixelDetector& detector)
{
    // It has the limit of the main list, so that too many hotpixels fail before that is touched.
    BadpixelListModel working;
    working.setMaxUserEntries(m_list.maxUserEntries());
    working.setFactoryCount(m_list.factoryCount());
    for (int row = 0; row < m_list.rowCount(); ++row) {
        const BadpixelEntry entry = m_list.badpixelAt(row);
        working.addBadpixel(QPoint(entry.x, entry.y));
    }
    detector.detect(&working);
    // All of them, also those that it came with. The list refuses those as duplicates, unless it is
    // full: then it throws.
    for (int row = 0; row < working.rowCount(); ++row) {
        const BadpixelEntry entry = working.badpixelAt(row);
        m_list.addBadpixel(QPoint(entry.x, entry.y));
    }
}

bool DetectionRun::isDark(const QImage& image)
{
    const std::span bytes(image.constBits(), static_cast<std::size_t>(image.sizeInBytes()));
    int bright = 0;
    for (std::size_t first = 0; first < bytes.size(); first += CountedTogether) {
        const std::size_t count = std::min(CountedTogether, bytes.size() - first);
        bright += brightBytes(bytes.subspan(first, count));
        if (bright > MaxBrightBytes) {
            return false;
        }
    }
    return true;
}

void DetectionRun::stopCollecting()
{
    m_running = false;
    progress = 0;
}
