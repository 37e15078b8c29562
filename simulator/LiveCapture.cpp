// SPDX-License-Identifier: MIT
#include "simulator/LiveCapture.h"

#include "camera/CameraSdk.h"
#include "simulator/ModelledFrames.h"
#include "simulator/PixelCorrection.h"
#include "simulator/RecordedFrames.h"
#include "simulator/SdkErrors.h"

#include <algorithm>
#include <cstring>
#include <utility>

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

LiveCapture::LiveCapture(const SensorModel& model, EventBindings& events, double speed)
    : m_model(model)
    , m_events(events)
    , m_speed(speed)
{}

LiveCapture::~LiveCapture()
{
    stop();
}

void LiveCapture::setSettings(CaptureSettings settings)
{
    const MutexLock lock(m_mutex);
    m_settings = std::move(settings);
    m_changed.notify_all();
}

void LiveCapture::prepareSources()
{
    const CameraDescription& camera = m_model.description();
    if (!m_recordedFrames && !camera.recordedFrames.isEmpty()) {
        m_recordedFrames =
            std::make_unique<RecordedFrames>(camera.recordedFrames, camera.width, camera.height);
    }
    if (!m_modelledFrames && !camera.playsRecordedFramesOnly()) {
        m_modelledFrames = std::make_unique<ModelledFrames>(m_model);
    }
}

std::int32_t LiveCapture::start(int bitsPerPixel)
{
    const MutexLock lock(m_mutex);
    if (m_session != 0) {
        // The editor starts capture again right after opening, which has started it already.
        return simulator::Success;
    }
    if (m_capturing) {
        return simulator::CaptureRunning; // another thread is stopping it
    }
    if (m_ring.isEmpty()) {
        return simulator::SequenceEmpty;
    }
    for (const FrameRing::Memory& memory : m_ring.memories()) {
        if (memory->bitsPerPixel != bitsPerPixel) {
            return simulator::InvalidBufferSize;
        }
    }
    prepareSources();
    m_session = ++m_lastSession;
    m_capturing = true;
    m_thread = std::thread(&LiveCapture::capture, this, m_session);
    return simulator::Success;
}

void LiveCapture::stop()
{
    MutexLock lock(m_mutex);
    m_session = 0;
    m_changed.notify_all();
    std::thread ending = std::move(m_thread);
    m_thread = {};
    if (ending.joinable()) {
        lock.unlock();
        ending.join();
        lock.lock();
        m_capturing = false;
        m_changed.notify_all();
        return;
    }
    // Another thread is stopping it already; a capture started after that is not ours to stop.
    const std::uint64_t session = m_lastSession;
    while (m_capturing && m_lastSession == session) {
        lock.wait(m_changed);
    }
}

bool LiveCapture::isRunning() const
{
    const MutexLock lock(m_mutex);
    return m_session != 0;
}

void LiveCapture::reset()
{
    stop();
    const MutexLock lock(m_mutex);
    m_ring.clear();
    m_frame = 0;
    m_modelledFrames.reset();
    m_recordedFrames.reset();
    m_rawFrame = {};
}

void LiveCapture::append(FrameRing::Memory memory)
{
    const MutexLock lock(m_mutex);
    m_ring.append(std::move(memory));
}

void LiveCapture::remove(const FrameRing::Memory& memory)
{
    const MutexLock lock(m_mutex);
    m_ring.remove(memory);
    m_changed.notify_all();
}

bool LiveCapture::holds(const FrameRing::Memory& memory) const
{
    const MutexLock lock(m_mutex);
    const std::vector<FrameRing::Memory>& memories = m_ring.memories();
    return std::find(memories.begin(), memories.end(), memory) != memories.end();
}

void LiveCapture::clear()
{
    const MutexLock lock(m_mutex);
    m_ring.clear();
    m_changed.notify_all();
}

FrameRing::Memory LiveCapture::latestFrame()
{
    MutexLock lock(m_mutex);
    while (m_ring.latestIsBeingWritten()) {
        lock.wait(m_changed);
    }
    return m_ring.handOutLatest();
}

LiveCapture::Clock::duration LiveCapture::frameInterval() const
{
    return std::chrono::duration_cast<Clock::duration>(
        std::chrono::duration<double>(m_settings.frameTimeSec / m_speed));
}

void LiveCapture::capture(std::uint64_t session)
{
    MutexLock lock(m_mutex);
    Clock::time_point last = Clock::now();
    while (m_session == session) {
        if (!m_settings.connected) {
            lock.wait(m_changed);
            last = Clock::now();
            continue;
        }
        const Clock::time_point due = last + frameInterval();
        if (Clock::now() < due) {
            lock.waitUntil(m_changed, due);
            continue;
        }
        // Frames that could not be made in time are not made up for.
        last = Clock::now() - due < frameInterval() ? due : Clock::now();
        const std::uint64_t frame = m_frame++;
        const CaptureSettings settings = m_settings;
        const FrameRing::Memory memory = beginFrame();
        if (!memory) {
            m_events.signal(camera::EventFrameFailed);
            continue;
        }
        lock.unlock();
        renderFrame(frame, settings, *memory);
        lock.lock();
        endFrame(session);
    }
}

FrameRing::Memory LiveCapture::beginFrame()
{
    return m_settings.dropFrames ? nullptr : m_ring.beginWrite();
}

void LiveCapture::endFrame(std::uint64_t session)
{
    const bool complete = m_session == session && m_settings.connected;
    m_ring.endWrite(complete);
    m_changed.notify_all();
    if (complete) {
        m_events.signal(camera::EventFrame);
    }
}

void LiveCapture::renderFrame(std::uint64_t frame, const CaptureSettings& settings,
                              const SimulatedImageMemory& memory)
{
    const CameraDescription& camera = m_model.description();
    const bool raw = settings.colorMode != camera::ColorModeRgb32;
    std::size_t pitch = memory.pitch;
    auto* pixels = reinterpret_cast<std::uint8_t*>(memory.data());
    if (!raw) {
        pitch = static_cast<std::size_t>(camera.width);
        m_rawFrame.resize(pitch * static_cast<std::size_t>(camera.height));
        pixels = m_rawFrame.data();
    }
    const bool recorded =
        m_recordedFrames && (settings.sensor.covered || !camera.recordedOnlyCovered);
    SensorFrameSource& source = recorded ? *m_recordedFrames : *m_modelledFrames;
    source.render(frame, settings.sensor, pixels, pitch);
    simulator::correctPixels(pixels, pitch, camera.width, camera.height, camera.bayer,
                             settings.corrected);
    if (!raw) {
        toRgb32(pixels, camera.width, camera.height, camera.bayer, memory);
    }
}
