// SPDX-License-Identifier: MIT
#include "simulator/IniFile.h"
#include "simulator/SdkErrors.h"
#include "simulator/SimulatedCamera.h"
#include "simulator/SimulatedCameraSdk.h"

#include <QFile>
#include <QFileInfo>
#include <QSettings>

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include <optional>
#include <stdexcept>
#include <utility>

// What can be set on an opened camera: one by one, and from a settings file.

using simulator::Success;

namespace {

std::int32_t giveRange(const SensorTiming::Range& range, double* minimum, double* maximum,
                       double* step)
{
    if (minimum == nullptr || maximum == nullptr || step == nullptr) {
        return simulator::NullPointer;
    }
    *minimum = range.minimum;
    *maximum = range.maximum;
    *step = range.step;
    return Success;
}

} // namespace

std::int32_t SimulatedCameraSdk::setColorMode(Handle handle, std::int32_t mode)
{
    return withConnectedCamera(handle, [mode](SimulatedCamera& camera) {
        return mode == camera::QueryCurrent ? camera.colorMode() : camera.setColorMode(mode);
    });
}

std::int32_t SimulatedCameraSdk::setPixelClock(Handle handle, std::int32_t value)
{
    return withConnectedCamera(handle, [value](SimulatedCamera& camera) -> std::int32_t {
        if (value == camera::QueryCurrent) {
            return camera.timing().pixelClock();
        }
        if (value == camera::QueryDefault) {
            return camera.timing().pixelClockDefault();
        }
        return camera.setPixelClock(value);
    });
}

std::int32_t SimulatedCameraSdk::getSensorInfo(Handle handle, SensorInfo* info)
{
    if (info == nullptr) {
        return simulator::NullPointer;
    }
    return withConnectedCamera(handle, [info](SimulatedCamera& camera) {
        *info = {};
        info->maxWidth = static_cast<std::uint32_t>(camera.description().width);
        info->maxHeight = static_cast<std::uint32_t>(camera.description().height);
        return Success;
    });
}

std::int32_t SimulatedCameraSdk::setHardwareGain(Handle handle, std::int32_t master,
                                                 std::int32_t red, std::int32_t green,
                                                 std::int32_t blue)
{
    return withConnectedCamera(handle, [=](SimulatedCamera& camera) -> std::int32_t {
        return master == camera::QueryCurrent ? camera.masterGain()
                                              : camera.setGains({master, red, green, blue});
    });
}

std::int32_t SimulatedCameraSdk::getFramesPerSecond(Handle handle, double* framesPerSecond)
{
    if (framesPerSecond == nullptr) {
        return simulator::NullPointer;
    }
    return withConnectedCamera(handle, [framesPerSecond](SimulatedCamera& camera) {
        *framesPerSecond = 1.0 / camera.timing().frameTime();
        return Success;
    });
}

std::int32_t SimulatedCameraSdk::setFrameRate(Handle handle, double framesPerSecond, double* actual)
{
    if (actual == nullptr) {
        return simulator::NullPointer;
    }
    if (!std::isfinite(framesPerSecond) || framesPerSecond <= 0) {
        return simulator::InvalidParameter;
    }
    return withConnectedCamera(handle, [=](SimulatedCamera& camera) {
        *actual = camera.setFrameRate(framesPerSecond);
        return Success;
    });
}

std::int32_t SimulatedCameraSdk::setExposureTime(Handle handle, double milliseconds, double* actual)
{
    if (actual == nullptr) {
        return simulator::NullPointer;
    }
    if (!std::isfinite(milliseconds) || milliseconds < 0) {
        return simulator::InvalidParameter;
    }
    return withConnectedCamera(handle, [=](SimulatedCamera& camera) {
        if (milliseconds == camera::QueryDefaultDouble) {
            *actual = camera.timing().defaultExposure();
        } else if (milliseconds == camera::QueryCurrentDouble) {
            *actual = camera.timing().exposure();
        } else {
            *actual = camera.setExposure(milliseconds);
        }
        return Success;
    });
}

std::int32_t SimulatedCameraSdk::getFrameTimeRange(Handle handle, double* minimum, double* maximum,
                                                   double* step)
{
    return withConnectedCamera(handle, [=](SimulatedCamera& camera) {
        return giveRange(camera.timing().frameTimeRange(), minimum, maximum, step);
    });
}

std::int32_t SimulatedCameraSdk::getExposureRange(Handle handle, double* minimum, double* maximum,
                                                  double* step)
{
    return withConnectedCamera(handle, [=](SimulatedCamera& camera) {
        return giveRange(camera.timing().exposureRange(), minimum, maximum, step);
    });
}

std::int32_t SimulatedCameraSdk::getPixelClockRange(Handle handle, std::int32_t* minimum,
                                                    std::int32_t* maximum)
{
    if (minimum == nullptr || maximum == nullptr) {
        return simulator::NullPointer;
    }
    return withConnectedCamera(handle, [=](SimulatedCamera& camera) {
        *minimum = camera.timing().pixelClockMin();
        *maximum = camera.timing().pixelClockMax();
        return Success;
    });
}

std::int32_t SimulatedCameraSdk::loadParameters(Handle handle, const char* fileName)
{
    if (fileName == nullptr) {
        return simulator::NullPointer;
    }
    const QString name = QFile::decodeName(fileName);
    return withConnectedCamera(handle, [&name](SimulatedCamera& camera) -> std::int32_t {
        if (!QFileInfo(name).isFile() || !QFile(name).open(QIODevice::ReadOnly)) {
            return camera::FileNotOpened;
        }
        try {
            return camera.loadParameters(*simulator::openIniFile(name));
        } catch (const std::runtime_error&) {
            return simulator::InvalidParameterFile;
        }
    });
}
