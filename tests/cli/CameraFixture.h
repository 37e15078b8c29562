// SPDX-License-Identifier: MIT
#pragma once

#include "cli/Companion.h"
#include "cli/Interruption.h"
#include "hotpixel/BadpixelEntry.h"
#include "simulator/EepromFile.h"
#include "simulator/SimulatedCameraSdk.h"
#include "tests/cli/RecordedConsole.h"
#include "tests/sdk/FaultyCameraSdk.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <vector>

/// The companion, again and again, on one small covered camera "S1" with a Bayer sensor; with a
/// data folder of its own for the backups. Whatever the companion does, its SDK can be watched and
/// made to fail.
class CameraFixture
{
public:
    using Entries = std::vector<BadpixelEntry>;

    struct Outcome
    {
        int status = -1;
        QByteArray out;
        QByteArray err;

        [[nodiscard]] QJsonObject json() const { return QJsonDocument::fromJson(out).object(); }
    };

    static CameraDescription camera()
    {
        CameraDescription camera;
        camera.serial = QStringLiteral("S1");
        camera.model = QStringLiteral("Small");
        camera.width = 64;
        camera.height = 48;
        camera.bayer = true;
        camera.colorMode = 11;
        camera.lineBlanking = 10000; // which lets it expose for a second
        camera.slowestFrame = 100;
        camera.hotPixels = 15;
        camera.factoryEntries = 2;
        camera.userEntries = 3;
        camera.userCapacity = 20;
        return camera;
    }

    explicit CameraFixture(const CameraDescription& description = camera())
        : m_simulated({{description}, 40, m_home.filePath(QStringLiteral("eeprom")), {}})
    {
        qputenv("XDG_DATA_HOME", m_home.filePath(QStringLiteral("data")).toLocal8Bit());
        control().setCovered(true);
    }

    ~CameraFixture()
    {
        m_dataHome.isNull() ? qunsetenv("XDG_DATA_HOME") : qputenv("XDG_DATA_HOME", m_dataHome);
    }

    CameraFixture(const CameraFixture&) = delete;
    CameraFixture& operator=(const CameraFixture&) = delete;

    /// Called with each command that the camera's hotpixel correction gets, before it does.
    std::function<void(std::int32_t command)> onCommand = [](std::int32_t) {};
    /// Called with each frame that is taken, from 1 on.
    std::function<void(int frame)> onFrame = [](int) {};
    /// What goes wrong.
    std::optional<SdkFault> fault;

    /// Commands and frames of the last run.
    std::vector<std::int32_t> commands;
    int frames = 0;
    bool struck = false;
    /// Calls of each operation in the last run.
    std::array<int, SdkOperationCount> calls{};

    [[nodiscard]] SimulatedCameraControl control()
    {
        return m_simulated.control(QStringLiteral("S1"));
    }
    [[nodiscard]] SimulatedCameraSdk& simulated() { return m_simulated; }
    [[nodiscard]] Interruption& interruption() { return m_interruption; }

    [[nodiscard]] QString path(const QString& name) const { return m_home.filePath(name); }

    /// Writes a file and returns its name.
    QString write(const QString& name, const QByteArray& content) const
    {
        QDir().mkpath(QFileInfo(path(name)).absolutePath());
        QFile file(path(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
        return file.fileName();
    }

    /// Runs the companion; @p arguments are separated by blanks, DIR in them is the fixture's
    /// folder.
    Outcome run(QString arguments)
    {
        arguments.replace(QStringLiteral("DIR"), m_home.path());
        commands.clear();
        calls.fill(0);
        frames = 0;
        RecordedConsole recorded;
        Outcome outcome;
        {
            Companion companion(
                [this] {
                    auto sdk = std::make_unique<WatchedSdk>(m_simulated, *this);
                    sdk->arm(fault);
                    return sdk;
                },
                {}, recorded.console(), m_interruption);
            outcome.status =
                companion.run(QStringList(QStringLiteral("vorn-hotpixel")) + arguments.split(u' '));
        }
        outcome.out = recorded.out().replace(m_home.path().toUtf8(), "DIR");
        outcome.err = recorded.err().replace(m_home.path().toUtf8(), "DIR");
        return outcome;
    }

    /// The lists in the camera's EEPROM, read without any SDK.
    [[nodiscard]] Entries user() const { return entriesOf(eeprom().user, UserPixel); }
    [[nodiscard]] Entries factory() const { return entriesOf(eeprom().factory, FactoryPixel); }

    /// Makes the camera's user list.
    void setUser(const Entries& entries) const
    {
        EepromContent content = eeprom();
        content.user.clear();
        for (const BadpixelEntry& entry : entries) {
            content.user.push_back({entry.x, entry.y});
        }
        EepromFile(eepromFile()).write(content);
    }

    [[nodiscard]] QString backupFolder() const
    {
        return path(QStringLiteral("data/VornHotpixelEditor/backups"));
    }
    /// The names of the backups, oldest first.
    [[nodiscard]] QStringList backups() const
    {
        return QDir(backupFolder()).entryList(QDir::Files | QDir::Hidden, QDir::Name);
    }

    /// The positions of the sensor's hot pixels.
    [[nodiscard]] Entries hotPixels()
    {
        Entries entries;
        for (const KnownHotPixel& pixel : control().knownHotPixels()) {
            entries.push_back({pixel.x, pixel.y, UserPixel});
        }
        return entries;
    }

private:
    class WatchedSdk final : public FaultyCameraSdk
    {
    public:
        WatchedSdk(CameraSdk& sdk, CameraFixture& fixture)
            : FaultyCameraSdk(sdk)
            , m_fixture(fixture)
        {}

        ~WatchedSdk() override
        {
            m_fixture.struck = struck();
            for (std::size_t i = 0; i < SdkOperationCount; ++i) {
                m_fixture.calls[i] = FaultyCameraSdk::calls(static_cast<SdkOperation>(i));
            }
        }

        std::int32_t hotpixelCommand(Handle handle, std::int32_t command, void* buffer,
                                     std::int32_t size) override
        {
            m_fixture.commands.push_back(command);
            m_fixture.onCommand(command);
            return FaultyCameraSdk::hotpixelCommand(handle, command, buffer, size);
        }

        std::int32_t getFrameMemory(Handle handle, std::int32_t first, std::int32_t second,
                                    char** memory) override
        {
            m_fixture.onFrame(++m_fixture.frames);
            return FaultyCameraSdk::getFrameMemory(handle, first, second, memory);
        }

    private:
        CameraFixture& m_fixture;
    };

    [[nodiscard]] QString eepromFile() const { return path(QStringLiteral("eeprom/S1.eeprom")); }
    [[nodiscard]] EepromContent eeprom() const { return EepromFile(eepromFile()).read(); }

    static Entries entriesOf(const std::vector<EepromPosition>& positions, Pixelclass pixelClass)
    {
        Entries entries;
        for (const EepromPosition& position : positions) {
            entries.push_back({position.x, position.y, pixelClass});
        }
        return entries;
    }

    const QByteArray m_dataHome = qgetenv("XDG_DATA_HOME");
    QTemporaryDir m_home;
    SimulatedCameraSdk m_simulated;
    Interruption m_interruption;
};
