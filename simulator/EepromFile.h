// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <cstdint>
#include <vector>

struct EepromPosition
{
    std::uint16_t x;
    std::uint16_t y;

    friend bool operator==(const EepromPosition&, const EepromPosition&) = default;
};

/// What a simulated camera remembers while it is switched off.
struct EepromContent
{
    bool firmwareUploaded = false;
    std::vector<EepromPosition> factory;
    std::vector<EepromPosition> user;

    friend bool operator==(const EepromContent&, const EepromContent&) = default;
};

/// The EEPROM of one camera: a text file with a checksum. A write replaces the file as a whole, so
/// that whoever reads it, and whoever finds it after a crash in the middle, has the old or the new
/// content. Only who holds the camera writes; anybody may read. Without locking.
class EepromFile
{
public:
    explicit EepromFile(QString fileName);

    [[nodiscard]] const QString& fileName() const { return m_fileName; }
    [[nodiscard]] bool exists() const;

    /// @throws std::runtime_error with one line that names the file: it can't be read, or it is
    /// damaged
    [[nodiscard]] EepromContent read() const;

    /// Replaces the content, and puts it on the disk before it returns.
    /// @throws std::runtime_error with one line that names the file; it is then as it was
    void write(const EepromContent& content) const;

    /// Renames the file so that its content stays for inspection: "name.damaged-1" and so on.
    /// @return the new name, empty when the file can't be renamed
    QString keepAside() const;

    /// Removes what writers that were killed have left beside the file.
    void removeLeftovers() const;

private:
    QString m_fileName;
};
