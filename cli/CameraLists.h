// SPDX-License-Identifier: MIT
#pragma once

#include "camera/CameraSdk.h"
#include "hotpixel/BadpixelEntry.h"

#include <QCoreApplication>

#include <span>
#include <vector>

/// The hotpixel lists in the EEPROM of an open camera, exactly as they are there: every failure is
/// an error, and every length that a list can have is read.
///
/// All operations throw cli::CommandError with what failed and the SDK's text for it.
class CameraLists
{
    Q_DECLARE_TR_FUNCTIONS(CameraLists)

public:
    /// A list's buffer counts its entries in 16 bits.
    static constexpr int MaxEntries = 65535;

    /// @p sdk must outlive the object, and the camera must stay open as long as it is used.
    CameraLists(CameraSdk& sdk, CameraSdk::Handle handle)
        : m_sdk(sdk)
        , m_handle(handle)
    {}

    /// How many entries the user list has room for.
    [[nodiscard]] int maxUserEntries() const;

    /// The factory list, in the camera's order.
    [[nodiscard]] std::vector<BadpixelEntry> factoryEntries() const;

    /// The user list, in the camera's order.
    [[nodiscard]] std::vector<BadpixelEntry> userEntries() const;

    /// Replaces the user list; an empty one is deleted.
    /// @param entries at most MaxEntries
    void setUserEntries(std::span<const BadpixelEntry> entries) const;

private:
    [[nodiscard]] int readCount(std::int32_t command, const QString& what) const;
    [[nodiscard]] std::vector<BadpixelEntry> readList(std::int32_t countCommand,
                                                      std::int32_t listCommand,
                                                      Pixelclass pixelClass,
                                                      const QString& what) const;
    void check(std::int32_t result, const QString& what) const;

    CameraSdk& m_sdk;
    CameraSdk::Handle m_handle;
};
