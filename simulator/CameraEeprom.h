// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/EepromFile.h"

#include <cstdint>
#include <string>
#include <vector>

/// Why the latest operation failed: a simulator::SdkError, and what there is to say about it beyond
/// its general text.
struct SdkFailure
{
    std::int32_t code = 0;
    std::string detail;
};

/// The EEPROM of a simulated camera as its commands see it: the two lists, the room for user
/// entries, and whether the firmware is there. Every change goes to the file first. Without
/// locking; only who holds the camera loads and writes.
class CameraEeprom
{
public:
    /// @param fresh what a camera holds that nobody has used yet
    /// @param userCapacity how many user entries fit
    CameraEeprom(QString fileName, EepromContent fresh, int userCapacity);

    [[nodiscard]] const EepromFile& file() const { return m_file; }

    /// Reads the file, and makes it when there is none. A file that is damaged is left as it is
    /// until something is written; meanwhile the lists can't be read.
    void load();

    /// Whether a camera that wants its firmware uploaded once would want it now, by the file alone.
    [[nodiscard]] bool needsFirmware() const;

    /// The same of what was loaded; a damaged EEPROM wants none.
    [[nodiscard]] bool lacksFirmware() const { return !m_content.firmwareUploaded && !m_damaged; }
    void setFirmwareUploaded();

    /// All positions that the camera corrects.
    [[nodiscard]] std::vector<EepromPosition> correctedPositions() const;

    /// The commands about lists, camera::GetFactoryCount to camera::DeleteUserList.
    /// @return 0 or a simulator::SdkError
    std::int32_t command(std::int32_t command, void* buffer, std::int32_t size);

    /// The latest failure since load().
    [[nodiscard]] const SdkFailure& failure() const { return m_failure; }

private:
    std::int32_t write(const EepromContent& content);
    [[nodiscard]] std::int32_t writeUserList(const void* buffer, std::int32_t size);
    std::int32_t fail(std::int32_t code, const std::string& detail);

    const EepromFile m_file;
    const EepromContent m_fresh;
    const int m_userCapacity;
    EepromContent m_content;
    bool m_damaged = false;
    SdkFailure m_failure;
};
