// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/EepromFile.h"
#include "simulator/EventBindings.h"
#include "simulator/FrameRing.h"
#include "simulator/Mutex.h"
#include "simulator/SensorFrameSource.h"
#include "simulator/SensorModel.h"

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <thread>
#include <vector>

/// What a camera's frames depend on.
struct CaptureSettings
{
    bool connected = true;   ///< without its cable the camera delivers no frames
    bool dropFrames = false; ///< every frame fails on its way
    double frameTimeSec = 1; ///< in the bus's own time
    SensorSettings sensor;
    int colorMode = 6; ///< camera::ColorModeRgb32, ColorModeMono8, ColorModeBayer8
    std::vector<EepromPosition> corrected; ///< the pixels that the camera replaces
};

/// The live capture of an open camera: a thread that fills the ring of image memories, one frame
/// after the other in the sensor's time, and signals camera::EventFrame or
/// camera::EventFrameFailed.
///
/// Any thread may call it. A frame is made without a lock, from the settings as they are when it
/// begins.
class LiveCapture
{
public:
    using Clock = std::chrono::steady_clock;

    /// @param model the sensor, whose description names the recorded frames; must outlive the
    /// capture
    /// @param events what is signalled; likewise
    /// @param speed simulated seconds in a second
    LiveCapture(const SensorModel& model, EventBindings& events, double speed);
    ~LiveCapture();
    LiveCapture(const LiveCapture&) = delete;
    LiveCapture& operator=(const LiveCapture&) = delete;

    /// From the next frame on; a new frame time counts for the one that is waited for, too.
    void setSettings(CaptureSettings settings) VORN_EXCLUDES(m_mutex);

    /// Starts the thread. Once more while it runs is fine.
    /// @param bitsPerPixel of the frames; all memory in the ring must be of that depth
    /// @return 0 or a simulator::SdkError
    /// @throws std::runtime_error the recorded frames can't be used; one line that says why
    std::int32_t start(int bitsPerPixel) VORN_EXCLUDES(m_mutex);

    /// Returns when no frame is being written any more.
    void stop() VORN_EXCLUDES(m_mutex);

    [[nodiscard]] bool isRunning() const VORN_EXCLUDES(m_mutex);

    /// Stops, and forgets ring, sources and the number of the frame. Nobody starts it meanwhile.
    void reset() VORN_EXCLUDES(m_mutex);

    // The ring.
    void append(FrameRing::Memory memory) VORN_EXCLUDES(m_mutex);
    void remove(const FrameRing::Memory& memory) VORN_EXCLUDES(m_mutex);
    [[nodiscard]] bool holds(const FrameRing::Memory& memory) const VORN_EXCLUDES(m_mutex);
    void clear() VORN_EXCLUDES(m_mutex);

    /// The latest complete frame, null when there is none; waits when it is just being replaced.
    FrameRing::Memory latestFrame() VORN_EXCLUDES(m_mutex);

private:
    void prepareSources();
    void capture(std::uint64_t session);
    [[nodiscard]] FrameRing::Memory beginFrame() VORN_REQUIRES(m_mutex);
    void endFrame(std::uint64_t session) VORN_REQUIRES(m_mutex);
    void renderFrame(std::uint64_t frame, const CaptureSettings& settings,
                     const SimulatedImageMemory& memory);
    [[nodiscard]] Clock::duration frameInterval() const VORN_REQUIRES(m_mutex);

    const SensorModel& m_model;
    EventBindings& m_events;
    const double m_speed;

    mutable Mutex m_mutex;
    std::condition_variable
        m_changed; ///< something that the thread, or who waits for it, waits for
    FrameRing m_ring VORN_GUARDED_BY(m_mutex);
    CaptureSettings m_settings VORN_GUARDED_BY(m_mutex);
    std::uint64_t m_session VORN_GUARDED_BY(m_mutex) = 0; ///< 0 while no capture is running
    std::uint64_t m_lastSession VORN_GUARDED_BY(m_mutex) = 0;
    bool m_capturing VORN_GUARDED_BY(m_mutex) = false; ///< a thread has not ended yet
    std::thread m_thread VORN_GUARDED_BY(m_mutex);
    std::uint64_t m_frame VORN_GUARDED_BY(m_mutex) = 0; ///< of the next one, from the opening on

    // Touched by the thread alone while it makes a frame, and while no such thread runs.
    std::unique_ptr<SensorFrameSource> m_modelledFrames;
    std::unique_ptr<SensorFrameSource> m_recordedFrames;
    std::vector<std::uint8_t> m_rawFrame;
};
