// SPDX-License-Identifier: MIT
#include "simulator/BusDescription.h"

#include "simulator/IniFile.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QSettings>
#include <QStandardPaths>

#include <algorithm>
#include <limits>
#include <memory>
#include <optional>
#include <set>
#include <stdexcept>
#include <utility>

namespace {

/// Where these texts belong.
struct Text
{
    Q_DECLARE_TR_FUNCTIONS(BusDescription)
};

[[noreturn]] void refuse(const QString& text)
{
    throw std::runtime_error(text.toStdString());
}

/// @p text from a file as a message can show it: no longer than a line, and on one line.
QString shown(const QString& text)
{
    constexpr qsizetype Most = 40;
    QString line = text.left(Most);
    for (QChar& letter : line) {
        if (!letter.isPrint()) {
            letter = QLatin1Char('?');
        }
    }
    return line;
}

/// The values of one group of the settings file. Each is asked for once; what is left over at the
/// end is a mistake.
class Group
{
public:
    Group(const QSettings& file, QString name)
        : m_file(file)
        , m_name(std::move(name))
    {
        const QString prefix = m_name + '/';
        const QStringList keys = m_file.allKeys();
        for (const QString& key : keys) {
            if (key.startsWith(prefix)) {
                m_unasked.insert(key.mid(prefix.size()));
            }
        }
    }

    /// The text behind @p key, nothing when the key is not there.
    std::optional<QString> text(const char* key)
    {
        const QString name = QLatin1String(key);
        if (m_unasked.erase(name) == 0) {
            return std::nullopt;
        }
        // A value with commas is a list to QSettings, and here it is just a text.
        return m_file.value(m_name + '/' + name).toStringList().join(QStringLiteral(", "));
    }

    void number(const char* key, double least, double most, double& value)
    {
        const std::optional<QString> given = text(key);
        if (!given) {
            return;
        }
        bool isNumber = false;
        const double read = given->toDouble(&isNumber);
        if (!isNumber || !(read >= least && read <= most)) {
            refuse(Text::tr("[%1] %2 must be a number from %3 to %4, not \"%5\"")
                       .arg(shown(m_name), QLatin1String(key), QString::number(least),
                            QString::number(most), shown(*given)));
        }
        value = read;
    }

    template <typename Integer>
    void whole(const char* key, qint64 least, qint64 most, Integer& value)
    {
        const std::optional<QString> given = text(key);
        if (!given) {
            return;
        }
        bool isNumber = false;
        const qint64 read = given->toLongLong(&isNumber);
        if (!isNumber || read < least || read > most) {
            refuse(Text::tr("[%1] %2 must be a whole number from %3 to %4, not \"%5\"")
                       .arg(shown(m_name), QLatin1String(key), QString::number(least),
                            QString::number(most), shown(*given)));
        }
        value = static_cast<Integer>(read);
    }

    /// The index in @p words of the text behind @p key, @p otherwise when there is none.
    qsizetype oneOf(const char* key, const QStringList& words, qsizetype otherwise)
    {
        const QString given = text(key).value_or(words[otherwise]);
        const qsizetype index = words.indexOf(given);
        if (index < 0) {
            refuse(Text::tr("[%1] %2 must be %3, not \"%4\"")
                       .arg(shown(m_name), QLatin1String(key), words.join(Text::tr(" or ")),
                            shown(given)));
        }
        return index;
    }

    void flag(const char* key, bool& value)
    {
        value = oneOf(key, {QStringLiteral("false"), QStringLiteral("true")}, value ? 1 : 0) == 1;
    }

    /// 1 to 15 characters that fit into a camera record; @p isAllowed says which.
    template <typename Predicate>
    void name(const char* key, Predicate isAllowed, QString& value)
    {
        value = text(key).value_or(value);
        if (value.isEmpty() || value.size() > 15 ||
            !std::all_of(value.begin(), value.end(), isAllowed)) {
            refuse(Text::tr("[%1] %2 must have 1 to 15 plain characters, not \"%3\"")
                       .arg(shown(m_name), QLatin1String(key), shown(value)));
        }
    }

    void refuseTheRest() const
    {
        if (!m_unasked.empty()) {
            refuse(Text::tr("[%1] there is no setting \"%2\"")
                       .arg(shown(m_name), shown(*m_unasked.begin())));
        }
    }

private:
    const QSettings& m_file;
    QString m_name;
    std::set<QString> m_unasked;
};

bool isSerialLetter(QChar letter)
{
    return (letter.isLetterOrNumber() && letter.unicode() < 128) || letter == QLatin1Char('-') ||
           letter == QLatin1Char('_');
}

bool isModelLetter(QChar letter)
{
    return letter.unicode() >= 32 && letter.unicode() < 127;
}

CameraDescription readCamera(Group group, std::uint32_t number, const QDir& folder)
{
    CameraDescription camera;
    camera.camId = number;
    camera.devId = number;
    camera.serial = QStringLiteral("SIM%1").arg(number, 4, 10, QLatin1Char('0'));
    camera.model = QStringLiteral("Simulated");
    group.name("serial", isSerialLetter, camera.serial);
    group.name("model", isModelLetter, camera.model);
    group.whole("camId", 1, 32767, camera.camId);
    group.whole("devId", 1, 32767, camera.devId);
    group.whole("word2", 0, 0xffffffff, camera.word2);

    group.whole("width", 4, 16384, camera.width);
    group.whole("height", 4, 16384, camera.height);
    camera.bayer = group.oneOf("sensor", {QStringLiteral("mono"), QStringLiteral("bayer")}, 0) == 1;
    const QStringList modes{QStringLiteral("0"), QStringLiteral("6"), QStringLiteral("11")};
    camera.colorMode = modes[group.oneOf("colorMode", modes, camera.bayer ? 2 : 1)].toInt();

    group.whole("pixelClockMax", 1, 2000, camera.pixelClockMax);
    camera.pixelClockMin = std::min(camera.pixelClockMin, camera.pixelClockMax);
    group.whole("pixelClockMin", 1, camera.pixelClockMax, camera.pixelClockMin);
    camera.pixelClockDefault =
        std::clamp(camera.pixelClockDefault, camera.pixelClockMin, camera.pixelClockMax);
    group.whole("pixelClock", camera.pixelClockMin, camera.pixelClockMax, camera.pixelClockDefault);
    group.whole("lineBlanking", 0, 16384, camera.lineBlanking);
    group.whole("frameBlanking", 1, 16384, camera.frameBlanking);
    group.whole("slowestFrame", 2, 1000, camera.slowestFrame);
    group.number("frameRate", 0.001, 10000, camera.frameRate);
    group.number("exposure", 0.001, 1e6, camera.exposureMsec);

    group.number("systemGain", 0.0001, 10, camera.dnPerElectron);
    group.number("readNoise", 0, 1000, camera.readNoiseElectrons);
    group.number("darkCurrent", 0, 1e6, camera.darkElectronsPerSecond);
    group.number("doublingTemperature", 1, 100, camera.doublingKelvin);
    group.number("pedestal", 0, 255, camera.pedestalDn);
    group.number("temperature", -50, 100, camera.temperature);

    group.whole("userCapacity", 0, 65535, camera.userCapacity);
    camera.recordedFrames = group.text("recordedFrames").value_or(QString());
    if (!camera.recordedFrames.isEmpty()) {
        camera.recordedFrames = QDir::cleanPath(folder.absoluteFilePath(camera.recordedFrames));
        camera.hotPixels = camera.factoryEntries = camera.userEntries = 0;
    }
    camera.recordedOnlyCovered =
        group.oneOf("recordedFramesPlay", {QStringLiteral("always"), QStringLiteral("covered")},
                    0) == 1;
    const qint64 pixels = qint64{camera.width} * camera.height;
    camera.hotPixels = static_cast<int>(std::min<qint64>(camera.hotPixels, pixels / 200));
    group.whole("hotPixels", 0, std::min<qint64>(pixels / 200, 5000), camera.hotPixels);
    group.whole("factoryEntries", 0, 1000, camera.factoryEntries);
    group.whole("userEntries", 0, 1000, camera.userEntries);
    camera.userEntries = std::min(camera.userEntries, camera.userCapacity);
    group.whole("seed", 0, std::numeric_limits<qint64>::max(), camera.seed);

    group.flag("firmwareUpload", camera.firmwareUpload);
    group.whole("firmwareUploadMsec", 0, 600000, camera.firmwareUploadMsec);
    group.flag("heldElsewhere", camera.heldElsewhere);
    group.flag("plugged", camera.plugged);
    group.refuseTheRest();

    constexpr qint64 MostPixels = qint64{128} << 20;
    if (pixels > MostPixels) {
        refuse(Text::tr("camera %1: a sensor of %2 x %3 pixels is too large")
                   .arg(number)
                   .arg(camera.width)
                   .arg(camera.height));
    }
    return camera;
}

BusDescription readWholeBus(const QString& fileName)
{
    const std::unique_ptr<QSettings> settings = simulator::openIniFile(fileName);
    const QSettings& file = *settings;

    BusDescription bus;
    Group general(file, QStringLiteral("bus"));
    general.number("speed", 0.01, 1000, bus.speed);
    general.refuseTheRest();

    const QDir folder = QFileInfo(fileName).absoluteDir();
    std::set<QString> serials;
    std::set<std::uint32_t> devIds;
    const QStringList groups = file.childGroups();
    if (!file.childKeys().isEmpty()) {
        refuse(Text::tr("\"%1\" stands outside of a group").arg(shown(file.childKeys().first())));
    }
    for (const QString& name : groups) {
        if (name == QLatin1String("bus")) {
            continue;
        }
        if (!name.startsWith(QLatin1String("camera"))) {
            refuse(Text::tr("[%1] is neither [bus] nor a camera").arg(shown(name)));
        }
        constexpr std::size_t MostCameras = 64;
        if (bus.cameras.size() == MostCameras) {
            refuse(Text::tr("there are more than %1 cameras").arg(MostCameras));
        }
        const auto number = static_cast<std::uint32_t>(bus.cameras.size() + 1);
        bus.cameras.push_back(readCamera(Group(file, name), number, folder));
        const CameraDescription& camera = bus.cameras.back();
        if (!serials.insert(camera.serial).second) {
            refuse(Text::tr("the serial number %1 is there twice").arg(camera.serial));
        }
        if (!devIds.insert(camera.devId).second) {
            refuse(Text::tr("the devId %1 is there twice").arg(camera.devId));
        }
    }
    return bus;
}

QString inSharedFolder(QStandardPaths::StandardLocation location, const char* name)
{
    return QDir(QStandardPaths::writableLocation(location))
        .filePath(QStringLiteral("VornHotpixelEditor/") + QLatin1String(name));
}

} // namespace

namespace simulator {

BusDescription builtInBus()
{
    CameraDescription mono;
    mono.serial = QStringLiteral("4102700101");
    mono.model = QStringLiteral("VC-1300M");
    mono.camId = mono.devId = 1;
    mono.word2 = 0x21;

    CameraDescription bayer = mono;
    bayer.serial = QStringLiteral("4102700502");
    bayer.model = QStringLiteral("VC-5000C");
    bayer.camId = bayer.devId = 2;
    bayer.word2 = 0x42;
    bayer.width = 2592;
    bayer.height = 1944;
    bayer.bayer = true;
    bayer.colorMode = 11;
    bayer.pixelClockMax = 120;
    bayer.pixelClockDefault = 60;
    bayer.hotPixels = 120;
    bayer.factoryEntries = 12;
    bayer.userEntries = 5;
    bayer.userCapacity = 256;

    CameraDescription large = bayer;
    large.serial = QStringLiteral("4102702003");
    large.model = QStringLiteral("VC-20000C");
    large.camId = large.devId = 3;
    large.word2 = 0x63;
    large.width = 5472;
    large.height = 3648;
    large.pixelClockMin = 60;
    large.pixelClockMax = 360;
    large.pixelClockDefault = 240;
    large.hotPixels = 200;
    large.factoryEntries = 20;
    large.userEntries = 10;
    large.userCapacity = 1000;
    large.firmwareUpload = true;

    CameraDescription held = mono;
    held.serial = QStringLiteral("4102700204");
    held.model = QStringLiteral("VC-2300M");
    held.camId = held.devId = 4;
    held.word2 = 0x24;
    held.width = 1920;
    held.height = 1200;
    held.pixelClockMax = 120;
    held.pixelClockDefault = 74;
    held.hotPixels = 60;
    held.userCapacity = 25; // less than the sensor has hot pixels: a detection overflows it
    held.heldElsewhere = true;

    BusDescription bus;
    bus.cameras = {mono, bayer, large, held};
    return bus;
}

BusDescription readBus(const QString& fileName)
{
    try {
        return readWholeBus(fileName);
    } catch (const std::runtime_error& error) {
        BusDescription bus = builtInBus();
        bus.message = Text::tr("%1: %2; the built-in cameras are used instead")
                          .arg(fileName, QString::fromUtf8(error.what()));
        return bus;
    }
}

BusDescription readBus()
{
    const QString named = qEnvironmentVariable("VORN_SIMULATED_CAMERAS");
    if (!named.isEmpty()) {
        return readBus(named);
    }
    const QString own = settingsFileName();
    return QFileInfo::exists(own) ? readBus(own) : builtInBus();
}

QString settingsFileName()
{
    return inSharedFolder(QStandardPaths::GenericConfigLocation, "simulated-cameras.ini");
}

QString eepromFolder()
{
    const QString named = qEnvironmentVariable("VORN_SIMULATED_EEPROMS");
    return named.isEmpty() ? inSharedFolder(QStandardPaths::GenericDataLocation, "eeprom") : named;
}

} // namespace simulator
