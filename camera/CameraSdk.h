// SPDX-License-Identifier: MIT
#pragma once

#include "camera/EventObject.h"

#include <cstddef>
#include <cstdint>
#include <memory>

/// What `CameraSdk::getSensorInfo` fills in. Camera SDK record, 80 bytes.
struct SensorInfo
{
    std::uint8_t reserved0[36];
    std::uint32_t maxWidth;  ///< pixels; also the width of the live image
    std::uint32_t maxHeight; ///< pixels; also the height of the live image
    std::uint8_t reserved44[36];
};
static_assert(sizeof(SensorInfo) == 80);
static_assert(offsetof(SensorInfo, maxWidth) == 36);
static_assert(offsetof(SensorInfo, maxHeight) == 40);

/// One connected camera. Camera SDK record, 112 bytes.
struct CameraListEntry
{
    std::uint32_t camId;
    std::uint32_t devId; ///< the "Dev" number, by which a camera is opened
    std::uint32_t word2;
    std::uint32_t status; ///< 0 when the camera is free
    char serNo[16];       ///< ASCII, zero-terminated
    char model[16];       ///< ASCII, zero-terminated
    std::uint8_t reserved48[64];
};
static_assert(sizeof(CameraListEntry) == 112);
static_assert(offsetof(CameraListEntry, camId) == 0);
static_assert(offsetof(CameraListEntry, devId) == 4);
static_assert(offsetof(CameraListEntry, word2) == 8);
static_assert(offsetof(CameraListEntry, status) == 12);
static_assert(offsetof(CameraListEntry, serNo) == 16);
static_assert(offsetof(CameraListEntry, model) == 32);

/// The connected cameras: `count` entries follow, so a caller allocates 4 + 112 × count bytes.
/// Camera SDK record.
struct CameraList
{
    std::uint32_t count;
    CameraListEntry entries[1];
};
static_assert(offsetof(CameraList, count) == 0);
static_assert(offsetof(CameraList, entries) == 4);

namespace camera {

// Values that stand in for a setting and turn a set operation into a query: the result is then the
// value asked for, not an error code.
inline constexpr std::int32_t QueryCurrent = 0x8000;
inline constexpr std::int32_t QueryDefault = 0x8001;
inline constexpr double QueryCurrentDouble = 32768.0;
inline constexpr double QueryDefaultDouble = 32769.0;

inline constexpr std::int32_t KeepGain = -1; ///< a colour gain that is not to be changed

// Results with a meaning of their own; 0 is success.
inline constexpr std::int32_t FirmwareUploadNeeded = 184; ///< of initCamera
inline constexpr std::int32_t FileNotOpened = 50;         ///< of loadParameters

// Flags in the selector that initCamera takes.
inline constexpr std::uint32_t OpenByDevice = 0x8000;
inline constexpr std::uint32_t OpenWithFirmwareUpload = 0x18000;

// Wait modes of startLiveVideo and stopLiveVideo.
inline constexpr std::int32_t DontWait = 0;
inline constexpr std::int32_t Wait = 1;
inline constexpr std::int32_t ForceStop = 0x4000;

// Colour modes: what an image pixel holds.
inline constexpr std::int32_t ColorModeRgb32 = 0;
inline constexpr std::int32_t ColorModeMono8 = 6;
inline constexpr std::int32_t ColorModeBayer8 = 11;

// SDK events.
inline constexpr std::int32_t EventFrame = 2;
inline constexpr std::int32_t EventFrameFailed = 8;
inline constexpr std::int32_t EventReconnected = 9;
inline constexpr std::int32_t EventRemoved = 128;
inline constexpr std::int32_t EventDeviceRemoved = 129;
inline constexpr std::int32_t EventDeviceNew = 130;

// Commands of hotpixelCommand. The four that switch the camera's correction, and the ones that move
// lists. A list buffer is an array of unsigned 16-bit words: the number of entries n, then n pairs
// x, y; its size is 4n + 2 bytes.
inline constexpr std::int32_t CorrectionOffFirst = 0;
inline constexpr std::int32_t CorrectionOnFirst = 1;
inline constexpr std::int32_t CorrectionOnSecond = 2;
inline constexpr std::int32_t CorrectionOffSecond = 8;
inline constexpr std::int32_t GetFactoryCount = 33031;   ///< one 32-bit integer, size 4
inline constexpr std::int32_t GetFactoryList = 33032;    ///< list buffer
inline constexpr std::int32_t GetUserCount = 33034;      ///< one 32-bit integer, size 4
inline constexpr std::int32_t GetUserList = 33035;       ///< list buffer
inline constexpr std::int32_t SetUserList = 33036;       ///< list buffer
inline constexpr std::int32_t GetMaxUserEntries = 33037; ///< one 32-bit integer, size 4
inline constexpr std::int32_t DeleteUserList = 33038;    ///< null, size 0

} // namespace camera

/// The 29 operations of the camera maker's library that the program uses, in the order of their
/// ordinals there. The implementation keeps no state for its caller: whoever calls holds the
/// handle.
///
/// Every operation returns 0 for success, another code for failure (its text comes from getError),
/// or, in the query forms of setColorMode, setPixelClock and setHardwareGain, the value asked for.
/// All are called on the GUI thread, except disableEvent and exitEvent, which an EventThread calls
/// from its own thread as it ends. Nothing is locked above this interface.
class CameraSdk
{
public:
    using Handle = std::uint32_t; ///< 0 when no camera is open

    virtual ~CameraSdk() = default;

    /// Ordinal 3. Stops live capture; @p waitMode is camera::Wait or camera::ForceStop.
    virtual std::int32_t stopLiveVideo(Handle handle, std::int32_t waitMode) = 0;

    /// Ordinal 5. Starts live capture into the sequence; @p waitMode is camera::DontWait or
    /// camera::Wait.
    virtual std::int32_t startLiveVideo(Handle handle, std::int32_t waitMode) = 0;

    /// Ordinal 17. Sets the colour mode, or returns the current one for camera::QueryCurrent.
    virtual std::int32_t setColorMode(Handle handle, std::int32_t mode) = 0;

    /// Ordinal 23. The text for the code preset in @p code. The text belongs to the SDK and is
    /// valid until the next call. @return 0 when @p text is valid.
    virtual std::int32_t getError(Handle handle, std::int32_t* code, char** text) = 0;

    /// Ordinal 36. Allocates image memory of @p width × @p height pixels.
    virtual std::int32_t allocImageMemory(Handle handle, std::int32_t width, std::int32_t height,
                                          std::int32_t bitsPerPixel, char** memory,
                                          std::int32_t* memoryId) = 0;

    /// Ordinal 38. Gives back what allocImageMemory allocated.
    virtual std::int32_t freeImageMemory(Handle handle, char* memory, std::int32_t memoryId) = 0;

    /// Ordinal 55. Binds @p event to the SDK event @p eventId; handle 0 for device events.
    virtual std::int32_t initEvent(Handle handle, EventHandle event, std::int32_t eventId) = 0;

    /// Ordinal 56. Releases what initEvent bound. Any thread.
    virtual std::int32_t exitEvent(Handle handle, std::int32_t eventId) = 0;

    /// Ordinal 57. From now on the SDK signals the event object bound to @p eventId.
    virtual std::int32_t enableEvent(Handle handle, std::int32_t eventId) = 0;

    /// Ordinal 58. The counterpart of enableEvent. Any thread.
    virtual std::int32_t disableEvent(Handle handle, std::int32_t eventId) = 0;

    /// Ordinal 68. Appends image memory to the ring that live capture fills in turn.
    virtual std::int32_t addToSequence(Handle handle, char* memory, std::int32_t memoryId) = 0;

    /// Ordinal 69. Empties the ring.
    virtual std::int32_t clearSequence(Handle handle) = 0;

    /// Ordinal 70. The image memory that holds the latest frame. The two integers are 0.
    virtual std::int32_t getFrameMemory(Handle handle, std::int32_t, std::int32_t,
                                        char** memory) = 0;

    /// Ordinal 205. Sets the pixel clock in MHz, or returns the current or the default one.
    virtual std::int32_t setPixelClock(Handle handle, std::int32_t value) = 0;

    /// Ordinal 213. Fills in @p info.
    virtual std::int32_t getSensorInfo(Handle handle, SensorInfo* info) = 0;

    /// Ordinal 215. Sets the gains, 0 to 100 each, camera::KeepGain leaves one as it is; or returns
    /// the current master gain when @p master is camera::QueryCurrent.
    virtual std::int32_t setHardwareGain(Handle handle, std::int32_t master, std::int32_t red,
                                         std::int32_t green, std::int32_t blue) = 0;

    /// Ordinal 221. The frame rate at which frames come, in frames per second.
    virtual std::int32_t getFramesPerSecond(Handle handle, double* framesPerSecond) = 0;

    /// Ordinal 231. Sets the frame rate; @p actual is the rate that the camera took.
    virtual std::int32_t setFrameRate(Handle handle, double framesPerSecond, double* actual) = 0;

    /// Ordinal 233. Sets the exposure time; @p actual is the time that the camera took. With
    /// camera::QueryCurrentDouble or camera::QueryDefaultDouble @p actual is what was asked for.
    virtual std::int32_t setExposureTime(Handle handle, double milliseconds, double* actual) = 0;

    /// Ordinal 237. Opens a camera: @p handle holds the selector (the "Dev" number or-ed with
    /// flags) before and the handle after. @p window is null.
    /// @return camera::FirmwareUploadNeeded when the camera needs a firmware upload first.
    virtual std::int32_t initCamera(Handle* handle, void* window) = 0;

    /// Ordinal 239. Closes the camera.
    virtual std::int32_t exitCamera(Handle handle) = 0;

    /// Ordinal 247. How many cameras are connected.
    virtual std::int32_t getNumberOfCameras(std::int32_t* count) = 0;

    /// Ordinal 271. The range of frame times, in seconds.
    virtual std::int32_t getFrameTimeRange(Handle handle, double* minimum, double* maximum,
                                           double* step) = 0;

    /// Ordinal 273. The range of exposure times, in milliseconds.
    virtual std::int32_t getExposureRange(Handle handle, double* minimum, double* maximum,
                                          double* step) = 0;

    /// Ordinal 299. The range of pixel clocks, in MHz.
    virtual std::int32_t getPixelClockRange(Handle handle, std::int32_t* minimum,
                                            std::int32_t* maximum) = 0;

    /// Ordinal 312. Loads a settings file into the camera.
    /// @return camera::FileNotOpened when the file can't be opened.
    virtual std::int32_t loadParameters(Handle handle, const char* fileName) = 0;

    /// Ordinal 335. Fills @p list, whose count says for how many entries there is room; the count
    /// holds afterwards how many there are.
    virtual std::int32_t getCameraList(CameraList* list) = 0;

    /// Ordinal 441. How long the firmware upload takes. @p handle is what the refused initCamera
    /// left in its handle variable, the integer is 1.
    virtual std::int32_t getFirmwareUploadTime(Handle handle, std::int32_t,
                                               std::int32_t* milliseconds) = 0;

    /// Ordinal 484. Switches the camera's hotpixel correction, and reads and writes the lists in
    /// its EEPROM; @p size is the size of @p buffer in bytes.
    virtual std::int32_t hotpixelCommand(Handle handle, std::int32_t command, void* buffer,
                                         std::int32_t size) = 0;
};

/// The camera SDK of this program. What it is (the maker's library or simulated cameras) is decided
/// by what the executable is linked with. Never null.
std::unique_ptr<CameraSdk> createCameraSdk();
