// SPDX-License-Identifier: MIT
#pragma once

#include "hotpixel/BadpixelEntry.h"
#include "hotpixel/CameraLists.h"

#include <QCoreApplication>
#include <QString>

#include <span>
#include <vector>

/// Replaces the user list in a camera's EEPROM so that no list is lost.
///
/// Whatever fails, the camera holds the old list or the new one as far as it still answers, and
/// once it may hold the new one, the backup file holds the old one. First check(), then write().
/// Main thread.
class GuardedWrite
{
    Q_DECLARE_TR_FUNCTIONS(GuardedWrite)

public:
    /// @param lists of the open camera
    /// @param serNo the camera's serial number, for the name of the backup
    /// @param backupFolder where the backup goes; made when it is missing
    GuardedWrite(CameraLists lists, QString serNo, QString backupFolder);

    /// Reads the list that is to be replaced, and finds out whether @p entries fit into the camera.
    /// @throws std::runtime_error when they don't, or when the camera does not say. Nothing has
    /// been
    ///         changed then.
    void check(std::span<const BadpixelEntry> entries);

    /// The list that check() found in the camera.
    [[nodiscard]] const std::vector<BadpixelEntry>& oldEntries() const { return m_oldEntries; }

    /// How many entries the camera can hold, as check() found.
    [[nodiscard]] int capacity() const { return m_capacity; }

    /// Saves the old list to a dated file, writes the entries that check() was given, reads them
    /// back and compares; puts the old list back when they differ.
    ///
    /// @return the backup file's name.
    /// @throws cli::CommandError what failed, which list the camera holds, and where the old one
    /// is.
    QString write();

private:
    [[nodiscard]] QString writeAndCompare() const;
    [[nodiscard]] QString putBack() const;

    CameraLists m_lists;
    QString m_serNo;
    QString m_backupFolder;
    int m_capacity = 0;
    std::vector<BadpixelEntry> m_newEntries;
    std::vector<BadpixelEntry> m_oldEntries;
};
