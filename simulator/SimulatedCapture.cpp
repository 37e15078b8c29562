// SPDX-License-Identifier: MIT
#include "camera/CameraSdk.h"
#include "simulator/ModelledFrames.h"
#include "simulator/PixelCorrection.h"
#include "simulator/RecordedFrames.h"
#include "simulator/SdkErrors.h"
#include "simulator/SimulatedCamera.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>
#include <utility>

// Live capture: the half of SimulatedCamera that works with a thread of its own.

namespace {

/// Makes grey or, for a mosaic, coloured pixels of 32 bits: each 2 × 2 block of a mosaic gets the
/// one colour that its four sites say.
void toRgb32(const std::uint8_t* raw, int width, int height, bool bayer,
             const SimulatedImageMemory& memory)
{
    const auto columns = static_cast<std::size_t>(width);
    const auto rows = static_cast<std::size_t>(height);
    std::vector<std::uint32_t> line(columns);
    for (std::size_t y = 0; y < rows; ++y) {
        const std::uint8_t* own = raw + y * columns;
        const std::uint8_t* even = raw + std::min(y & ~std::size_t{1}, rows - 1) * columns;
        const std::uint8_t* odd = raw + std::min(y | 1, rows - 1) * columns;
        for (std::size_t x = 0; x < columns; ++x) {
            const std::size_t left = x & ~std::size_t{1};
            const std::size_t right = std::min(x | 1, columns - 1);
            const std::uint32_t red = bayer ? even[left] : own[x];
            const std::uint32_t green = bayer ? (even[right] + odd[left] + 1U) / 2 : own[x];
            const std::uint32_t blue = bayer ? odd[right] : own[x];
            line[x] = 0xff000000U | red << 16 | green << 8 | blue;
        }
        std::memcpy(memory.data() + y * memory.pitch, line.data(), columns * sizeof line.front());
    }
}

} // namespace

std::int32_t SimulatedCamera::prepareSources()
{
    const CameraDescription& camera = description();
    if (!m_recordedFrames && !camera.recordedFrames.isEmpty()) {
        try {
            m_recordedFrames = std::make_unique<RecordedFrames>(camera.recordedFrames, camera.width,
                                                                camera.height);
        } catch (const std::runtime_error& error) {
            return fail(simulator::RecordedFramesUnusable, error.what());
        }
    }
    if (!m_modelledFrames && !playsRecordedFramesOnly()) {
        m_modelledFrames = std::make_unique<ModelledFrames>(m_model);
    }
    return simulator::Success;
}

std::int32_t SimulatedCamera::startLive()
{
    if (isLive()) {
        // The editor starts capture again right after opening, which has started it already.
        return simulator::Success;
    }
    if (m_capturing) {
        return simulator::CaptureRunning; // another thread is stopping it
    }
    if (ring.isEmpty()) {
        return simulator::SequenceEmpty;
    }
    for (const FrameRing::Memory& memory : ring.memories()) {
        if (memory->bitsPerPixel != bitsPerPixel()) {
            return simulator::InvalidBufferSize;
        }
    }
    const std::int32_t result = prepareSources();
    if (result != simulator::Success) {
        return result;
    }
    m_liveSession = ++m_lastSession;
    m_capturing = true;
    m_captureThread = std::thread(&SimulatedCamera::capture, this, m_liveSession);
    return simulator::Success;
}

void SimulatedCamera::stopLive(Lock& lock)
{
    m_liveSession = 0;
    m_changed.notify_all();
    std::thread ending = std::move(m_captureThread);
    m_captureThread = {};
    if (ending.joinable()) {
        lock.unlock();
        ending.join();
        lock.lock();
        m_capturing = false;
        m_changed.notify_all();
    } else {
        // Another thread is stopping it already; a capture started after that is not ours to stop.
        m_changed.wait(lock, [this, session = m_lastSession] {
            return !m_capturing || m_lastSession != session;
        });
    }
}

FrameRing::Memory SimulatedCamera::latestFrame(Lock& lock)
{
    m_changed.wait(lock, [this] { return !ring.latestIsBeingWritten(); });
    return ring.handOutLatest();
}

SimulatedCamera::Clock::duration SimulatedCamera::frameInterval() const
{
    return std::chrono::duration_cast<Clock::duration>(
        std::chrono::duration<double>(timing.frameTime() / m_speed));
}

void SimulatedCamera::capture(std::uint64_t session)
{
    Lock lock(m_mutex);
    Clock::time_point last = Clock::now();
    while (m_liveSession == session) {
        if (!m_plugged) {
            m_changed.wait(lock);
            last = Clock::now();
            continue;
        }
        const Clock::time_point due = last + frameInterval();
        if (Clock::now() < due) {
            m_changed.wait_until(lock, due);
            continue;
        }
        // Frames that could not be made in time are not made up for.
        last = Clock::now() - due < frameInterval() ? due : Clock::now();
        captureFrame(lock, session);
    }
}

void SimulatedCamera::captureFrame(Lock& lock, std::uint64_t session)
{
    const std::uint64_t frame = m_frame++;
    const FrameRing::Memory memory = dropFrames ? nullptr : ring.beginWrite();
    if (!memory) {
        events.signal(camera::EventFrameFailed);
        return;
    }
    const SensorSettings sensor = settings();
    const int mode = m_colorMode;
    std::vector<EepromPosition> corrected;
    if (m_correction) {
        corrected = m_eeprom.factory;
        corrected.insert(corrected.end(), m_eeprom.user.begin(), m_eeprom.user.end());
    }

    lock.unlock();
    renderFrame(frame, sensor, corrected, mode, *memory);
    lock.lock();

    const bool complete = m_liveSession == session && m_plugged;
    ring.endWrite(complete);
    m_changed.notify_all();
    if (complete) {
        events.signal(camera::EventFrame);
    }
}

void SimulatedCamera::renderFrame(std::uint64_t frame, const SensorSettings& settings,
                                  const std::vector<EepromPosition>& corrected, int mode,
                                  const SimulatedImageMemory& memory)
{
    const CameraDescription& camera = description();
    const bool raw = mode != camera::ColorModeRgb32;
    std::size_t pitch = memory.pitch;
    auto* pixels = reinterpret_cast<std::uint8_t*>(memory.data());
    if (!raw) {
        pitch = static_cast<std::size_t>(camera.width);
        m_rawFrame.resize(pitch * static_cast<std::size_t>(camera.height));
        pixels = m_rawFrame.data();
    }
    const bool recorded = m_recordedFrames && (settings.covered || !camera.recordedOnlyCovered);
    SensorFrameSource& source = recorded ? *m_recordedFrames : *m_modelledFrames;
    source.render(frame, settings, pixels, pitch);
    simulator::correctPixels(pixels, pitch, camera.width, camera.height, camera.bayer, corrected);
    if (!raw) {
        toRgb32(pixels, camera.width, camera.height, camera.bayer, memory);
    }
}
