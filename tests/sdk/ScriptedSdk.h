// SPDX-License-Identifier: MIT
#pragma once

#include "tests/sdk/MockCameraSdk.h"

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QMutex>
#include <QPoint>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <utility>
#include <vector>

/// Cameras for tests of the window: they do nothing by themselves, so a frame or an event comes
/// exactly when a test sends it, and what the window asked for can be read afterwards.
class ScriptedSdk final : public SilentCameraSdk
{
public:
    struct Device
    {
        std::uint32_t devId = 0;
        std::uint32_t status = 0; ///< as other programs hold it; opening it here adds 1
        QByteArray serNo = "4002714001";
        QByteArray model = "VX-1300";
        QList<QPoint> factory = {};
        QList<QPoint> user = {};
        int maxUserEntries = 100;
        int firmwareUploadMsec = 0; ///< refuses the first opening when it is not 0
        QString openFailure = {};   ///< the operation that fails with code 7
    };

    static constexpr int Width = 128;
    static constexpr int Height = 96;

    explicit ScriptedSdk(std::vector<Device> devices);

    /// Lets the open camera deliver a frame of Width × Height bytes.
    void sendFrame(const QByteArray& bytes);

    /// Signals an SDK event; a device event (129, 130) is not bound to a camera.
    void sendEvent(std::int32_t eventId);

    /// The operations that were called since the last takeCalls(), with the arguments that matter,
    /// without the queries that the camera list makes every second.
    [[nodiscard]] QStringList takeCalls();

    [[nodiscard]] int framesFetched() const { return m_framesFetched; }
    [[nodiscard]] bool isOpen() const { return m_open != nullptr; }

    std::vector<Device> devices;
    std::int32_t colorMode = camera::ColorModeBayer8;
    double framesPerSecond = 1.5;
    bool failEveryWrite = false;
    int startsUntilFailure = -1;    ///< live captures that start before one fails; -1 for all
    std::function<void()> onUpload; ///< called by the opening that uploads the firmware

    std::int32_t stopLiveVideo(Handle handle, std::int32_t waitMode) override;
    std::int32_t startLiveVideo(Handle handle, std::int32_t waitMode) override;
    std::int32_t setColorMode(Handle handle, std::int32_t mode) override;
    std::int32_t getError(Handle handle, std::int32_t* code, char** text) override;
    std::int32_t allocImageMemory(Handle handle, std::int32_t width, std::int32_t height,
                                  std::int32_t bitsPerPixel, char** memory,
                                  std::int32_t* memoryId) override;
    std::int32_t freeImageMemory(Handle handle, char* memory, std::int32_t memoryId) override;
    std::int32_t initEvent(Handle handle, EventHandle event, std::int32_t eventId) override;
    std::int32_t addToSequence(Handle handle, char* memory, std::int32_t memoryId) override;
    std::int32_t clearSequence(Handle handle) override;
    std::int32_t getFrameMemory(Handle handle, std::int32_t first, std::int32_t second,
                                char** memory) override;
    std::int32_t setPixelClock(Handle handle, std::int32_t value) override;
    std::int32_t getSensorInfo(Handle handle, SensorInfo* info) override;
    std::int32_t setHardwareGain(Handle handle, std::int32_t master, std::int32_t red,
                                 std::int32_t green, std::int32_t blue) override;
    std::int32_t getFramesPerSecond(Handle handle, double* rate) override;
    std::int32_t setFrameRate(Handle handle, double rate, double* actual) override;
    std::int32_t setExposureTime(Handle handle, double milliseconds, double* actual) override;
    std::int32_t initCamera(Handle* handle, void* window) override;
    std::int32_t exitCamera(Handle handle) override;
    std::int32_t getNumberOfCameras(std::int32_t* count) override;
    std::int32_t getFrameTimeRange(Handle handle, double* minimum, double* maximum,
                                   double* step) override;
    std::int32_t getExposureRange(Handle handle, double* minimum, double* maximum,
                                  double* step) override;
    std::int32_t getPixelClockRange(Handle handle, std::int32_t* minimum,
                                    std::int32_t* maximum) override;
    std::int32_t getCameraList(CameraList* list) override;
    std::int32_t getFirmwareUploadTime(Handle handle, std::int32_t one,
                                       std::int32_t* milliseconds) override;
    std::int32_t hotpixelCommand(Handle handle, std::int32_t command, void* buffer,
                                 std::int32_t size) override;

private:
    [[nodiscard]] std::int32_t record(const QString& operation, const QString& arguments = {});

    QMutex m_mutex; // event threads end with disableEvent and exitEvent
    QStringList m_calls;
    QHash<std::int32_t, EventHandle> m_events;
    QList<char*> m_sequence;
    QHash<char*, std::shared_ptr<QByteArray>> m_memory;
    QByteArray m_errorText;
    Device* m_open = nullptr;
    char* m_latest = nullptr;
    Handle m_handle = 0;
    int m_framesFetched = 0;
    std::int32_t m_pixelClock = 20;
    std::int32_t m_gain = 0;
    double m_exposure = 26.0;
};
