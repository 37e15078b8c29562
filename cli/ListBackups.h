// SPDX-License-Identifier: MIT
#pragma once

#include "hotpixel/BadpixelEntry.h"

#include <QDateTime>
#include <QString>

#include <optional>
#include <vector>

namespace cli {

/// A dated copy of the list that a camera held before a write, as saveBackup() made it.
struct ListBackup
{
    QString fileName; ///< with its path
    QString serNo;    ///< as far as the file's name can carry it: see fileNamePart()
    QDateTime saved;  ///< local time
    int number = 1;   ///< among those of the same second

    /// What the name of a file says; nothing when it is not that of a copy.
    static std::optional<ListBackup> named(const QString& fileName);

    [[nodiscard]] bool isOf(const QString& cameraSerNo) const;

    /// The list as the camera held it.
    /// @throws CommandError naming the file, and the line where there is one, when it can't be read
    ///         or is damaged.
    [[nodiscard]] std::vector<BadpixelEntry> entries() const;
};

/// All copies in @p folder, the newest first; none when there is no such folder.
[[nodiscard]] std::vector<ListBackup> backupsIn(const QString& folder);

/// Those of one camera.
[[nodiscard]] std::vector<ListBackup> backupsOf(const QString& serNo, const QString& folder);

} // namespace cli
