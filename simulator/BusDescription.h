// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <cstdint>
#include <vector>

/// Everything that sets one simulated camera apart: what it is, how its sensor behaves and in which
/// state it is found. The defaults are those of the settings file (simulator/README.md).
struct CameraDescription
{
    QString serial; ///< 1 to 15 ASCII letters, digits, '-' and '_'; names the EEPROM file
    QString model;  ///< 1 to 15 printable ASCII characters
    std::uint32_t camId = 1;
    std::uint32_t devId = 1; ///< 1 to 32767, the number by which the camera is opened
    std::uint32_t word2 = 0;

    int width = 1280;   ///< pixels
    int height = 1024;  ///< pixels
    bool bayer = false; ///< a colour sensor: R at (0, 0), G at (1, 0) and (0, 1), B at (1, 1)
    int colorMode = 6;  ///< the raw mode that the camera has: 11, or what setColorMode(11) leaves

    int pixelClockMin = 10;     ///< MHz
    int pixelClockMax = 60;     ///< MHz
    int pixelClockDefault = 43; ///< MHz
    int lineBlanking = 400;     ///< pixel clocks added to each line
    int frameBlanking = 26;     ///< lines added to each frame
    int slowestFrame = 16;      ///< the longest frame time, in shortest frame times
    double frameRate = 2.0;     ///< frames per second after opening
    double exposureMsec = 40.0; ///< after opening

    double dnPerElectron = 0.025;         ///< at master gain 0
    double readNoiseElectrons = 10.0;     ///< standard deviation
    double darkElectronsPerSecond = 20.0; ///< of an ordinary pixel at 25 °C
    double doublingKelvin = 7.0;          ///< the warming that doubles the dark current
    double pedestalDn = 8.0;
    double temperature = 25.0; ///< °C, of the sensor
    int hotPixels = 64;
    int factoryEntries = 6; ///< hot pixels in the factory list of a new camera
    int userEntries = 3;    ///< hot pixels in the user list of a new camera
    int userCapacity = 128; ///< entries that the user list has room for
    std::uint64_t seed = 0; ///< of positions and noise; 0 takes it from the serial number

    bool firmwareUpload = false;      ///< the first opening ever needs a firmware upload
    int firmwareUploadMsec = 2000;    ///< how long that takes
    bool heldElsewhere = false;       ///< another program has it open
    bool plugged = true;              ///< connected from the start
    QString recordedFrames;           ///< a folder of recorded frames to be played, or empty
    bool recordedOnlyCovered = false; ///< play them only while the sensor is covered

    [[nodiscard]] bool playsRecordedFramesOnly() const
    {
        return !recordedFrames.isEmpty() && !recordedOnlyCovered;
    }
};

/// The cameras of one simulated bus, in the order of the camera list.
struct BusDescription
{
    std::vector<CameraDescription> cameras;
    double speed =
        1.0; ///< how many simulated seconds pass in a second: 10 gives frames ten times as fast
    QString
        eepromFolder; ///< where the EEPROM and lock files are; empty for simulator::eepromFolder()
    QString message;  ///< what was wrong with the settings file, one line; empty when nothing was
};

namespace simulator {

/// The bus without a settings file: a mono camera of 1280 × 1024, a Bayer camera of 5 megapixels, a
/// Bayer camera of 20 megapixels that needs a firmware upload at its first opening, and a mono
/// camera of 1920 × 1200 that another program holds.
BusDescription builtInBus();

/// The bus that the settings file @p fileName describes. A file that can't be read or that holds
/// anything wrong gives the built-in bus with a message; nothing in a file throws.
BusDescription readBus(const QString& fileName);

/// The bus of this program: from the file that the environment variable VORN_SIMULATED_CAMERAS
/// names, otherwise from settingsFileName() when there is such a file, otherwise the built-in one.
BusDescription readBus();

/// simulated-cameras.ini in the folder VornHotpixelEditor of the person's configuration folder.
QString settingsFileName();

/// The folder of the EEPROM files, the same for every program of this project: what the environment
/// variable VORN_SIMULATED_EEPROMS names, otherwise VornHotpixelEditor/eeprom in the person's data
/// folder.
QString eepromFolder();

} // namespace simulator
