// SPDX-License-Identifier: MIT
#pragma once

#include "hotpixel/BadpixelEntry.h"

#include <QByteArray>
#include <QJsonObject>
#include <QProcess>
#include <QProcessEnvironment>
#include <QStringList>
#include <QTemporaryDir>

#include <memory>
#include <vector>

/// What a run of the companion left behind.
struct Finished
{
    int status = -1; ///< −1 when it did not end by itself
    QByteArray out;
    QByteArray err;

    /// The one JSON object that it printed.
    [[nodiscard]] QJsonObject json() const;
};

/// The demo companion as processes of their own, with simulated cameras, EEPROMs and a home that
/// nobody else has.
class CompanionFixture
{
public:
    /// @param cameras the text of the settings file of the simulated cameras
    explicit CompanionFixture(const QByteArray& cameras);

    /// The name of the companion's file.
    [[nodiscard]] static QString program();

    /// Sets a variable of the environment for the processes that are started from now on.
    void setVariable(const QString& name, const QString& value);

    /// A file in the fixture's folder.
    [[nodiscard]] QString file(const QString& name) const { return m_home.filePath(name); }

    /// Writes a file into the fixture's folder, and returns its name.
    QString write(const QString& name, const QByteArray& content) const;

    /// Starts the companion in the fixture's folder.
    [[nodiscard]] std::unique_ptr<QProcess> start(const QStringList& arguments) const;

    /// Runs the companion to its end; @p arguments are separated by blanks, and each %1 in them is
    /// @p name.
    Finished run(const QString& arguments, const QString& name = {}) const;

    /// Waits for the end of @p process.
    static Finished finish(QProcess& process);

    /// Waits until @p process has written @p text to standard error.
    [[nodiscard]] static bool waitForError(QProcess& process, const QByteArray& text);

    /// The user list in the EEPROM of the camera @p serial, read without any program.
    [[nodiscard]] std::vector<BadpixelEntry> eeprom(const QString& serial) const;

    /// Names of the backup files, oldest first.
    [[nodiscard]] QStringList backups() const;

private:
    QTemporaryDir m_home;
    QProcessEnvironment m_environment = QProcessEnvironment::systemEnvironment();
};

/// The settings of a small, fast camera with the Dev number 1 and the serial number S1, a Bayer
/// sensor of 64 × 48 pixels that can expose for a second, with room for 16 entries; @p more are
/// further lines.
QByteArray smallCamera(const QByteArray& more = {});
