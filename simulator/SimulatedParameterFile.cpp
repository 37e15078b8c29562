#include "simulator/IniFile.h"
#include "simulator/SdkErrors.h"
#include "simulator/SimulatedCamera.h"
#include "simulator/SimulatedCameraSdk.h"

#include <QFile>
#include <QFileInfo>
#include <QSettings>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <optional>
#include <stdexcept>

// The settings file that an opened camera loads.

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
            if (known == std::end(GainKeys) || value > 100) {
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
