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

constexpr std::int32_t HighestGain = 100;

bool isGain(std::int32_t gain)
{
    return gain == camera::KeepGain || (gain >= 0 && gain <= HighestGain);
}

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
    return withConnectedCamera(handle, [mode](SimulatedCamera& camera, SimulatedCamera::Lock&) {
        return mode == camera::QueryCurrent ? camera.colorMode() : camera.setColorMode(mode);
    });
}

std::int32_t SimulatedCameraSdk::setPixelClock(Handle handle, std::int32_t value)
{
    return withConnectedCamera(
        handle, [value](SimulatedCamera& camera, SimulatedCamera::Lock&) -> std::int32_t {
            if (value == camera::QueryCurrent) {
                return camera.timing.pixelClock();
            }
            if (value == camera::QueryDefault) {
                return camera.timing.pixelClockDefault();
            }
            return camera.timing.setPixelClock(value) ? Success : simulator::InvalidParameter;
        });
}

std::int32_t SimulatedCameraSdk::getSensorInfo(Handle handle, SensorInfo* info)
{
    if (info == nullptr) {
        return simulator::NullPointer;
    }
    return withConnectedCamera(handle, [info](SimulatedCamera& camera, SimulatedCamera::Lock&) {
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
    return withConnectedCamera(
        handle, [=](SimulatedCamera& camera, SimulatedCamera::Lock&) -> std::int32_t {
            if (master == camera::QueryCurrent) {
                return camera.masterGain;
            }
            const std::array<std::pair<std::int32_t, int*>, 4> gains{{{master, &camera.masterGain},
                                                                      {red, &camera.redGain},
                                                                      {green, &camera.greenGain},
                                                                      {blue, &camera.blueGain}}};
            for (const auto& [value, gain] : gains) {
                if (!isGain(value)) {
                    return simulator::InvalidParameter;
                }
            }
            for (const auto& [value, gain] : gains) {
                if (value != camera::KeepGain) {
                    *gain = value;
                }
            }
            return Success;
        });
}

std::int32_t SimulatedCameraSdk::getFramesPerSecond(Handle handle, double* framesPerSecond)
{
    if (framesPerSecond == nullptr) {
        return simulator::NullPointer;
    }
    return withConnectedCamera(handle,
                               [framesPerSecond](SimulatedCamera& camera, SimulatedCamera::Lock&) {
                                   *framesPerSecond = 1.0 / camera.timing.frameTime();
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
    return withConnectedCamera(handle, [=, this](SimulatedCamera& camera, SimulatedCamera::Lock&) {
        camera.timing.setFrameRate(framesPerSecond);
        m_changed.notify_all();
        *actual = 1.0 / camera.timing.frameTime();
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
    return withConnectedCamera(handle, [=](SimulatedCamera& camera, SimulatedCamera::Lock&) {
        if (milliseconds == camera::QueryDefaultDouble) {
            *actual = camera.timing.defaultExposure();
            return Success;
        }
        if (milliseconds != camera::QueryCurrentDouble) {
            camera.timing.setExposure(milliseconds);
        }
        *actual = camera.timing.exposure();
        return Success;
    });
}

std::int32_t SimulatedCameraSdk::getFrameTimeRange(Handle handle, double* minimum, double* maximum,
                                                   double* step)
{
    return withConnectedCamera(handle, [=](SimulatedCamera& camera, SimulatedCamera::Lock&) {
        return giveRange(camera.timing.frameTimeRange(), minimum, maximum, step);
    });
}

std::int32_t SimulatedCameraSdk::getExposureRange(Handle handle, double* minimum, double* maximum,
                                                  double* step)
{
    return withConnectedCamera(handle, [=](SimulatedCamera& camera, SimulatedCamera::Lock&) {
        return giveRange(camera.timing.exposureRange(), minimum, maximum, step);
    });
}

std::int32_t SimulatedCameraSdk::getPixelClockRange(Handle handle, std::int32_t* minimum,
                                                    std::int32_t* maximum)
{
    if (minimum == nullptr || maximum == nullptr) {
        return simulator::NullPointer;
    }
    return withConnectedCamera(handle, [=](SimulatedCamera& camera, SimulatedCamera::Lock&) {
        *minimum = camera.timing.pixelClockMin();
        *maximum = camera.timing.pixelClockMax();
        return Success;
    });
}

std::int32_t SimulatedCameraSdk::loadParameters(Handle handle, const char* fileName)
{
    if (fileName == nullptr) {
        return simulator::NullPointer;
    }
    const QString name = QFile::decodeName(fileName);
    return withConnectedCamera(
        handle, [&name](SimulatedCamera& camera, SimulatedCamera::Lock&) -> std::int32_t {
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

std::int32_t SimulatedCamera::loadParameters(const QSettings& file)
{
    SensorTiming loaded = timing;
    int gains[] = {masterGain, redGain, greenGain, blueGain};
    constexpr const char* GainKeys[] = {"masterGain", "redGain", "greenGain", "blueGain"};
    std::optional<double> frameRate;
    std::optional<double> exposureMsec;
    std::optional<int> clock;

    const QStringList keys = file.allKeys();
    for (const QString& key : keys) {
        bool isNumber = false;
        const double value = file.value(key).toString().toDouble(&isNumber);
        if (!isNumber || !std::isfinite(value) || value < 0) {
            return simulator::InvalidParameterFile;
        }
        if (key == QLatin1String("frameRate") && value > 0) {
            frameRate = value;
        } else if (key == QLatin1String("exposure")) {
            exposureMsec = value;
        } else if (key == QLatin1String("pixelClock") && value < 1e6) {
            clock = static_cast<int>(value);
        } else {
            const auto known = std::find(std::begin(GainKeys), std::end(GainKeys), key);
            if (known == std::end(GainKeys) || value > HighestGain) {
                return simulator::InvalidParameterFile;
            }
            gains[known - std::begin(GainKeys)] = static_cast<int>(value);
        }
    }
    if (clock && !loaded.setPixelClock(*clock)) {
        return simulator::InvalidParameterFile;
    }
    if (frameRate) {
        loaded.setFrameRate(*frameRate);
    }
    if (exposureMsec) {
        loaded.setExposure(*exposureMsec);
    }
    timing = loaded;
    masterGain = gains[0];
    redGain = gains[1];
    greenGain = gains[2];
    blueGain = gains[3];
    m_changed.notify_all();
    return simulator::Success;
}
