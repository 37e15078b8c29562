// SPDX-License-Identifier: MIT
#pragma once

#include "hotpixel/BadpixelEntry.h"

#include <QCoreApplication>

#include <cstdint>
#include <span>
#include <vector>

class Camera;

/// The hotpixel lists in the EEPROM of an open camera. Main thread.
///
/// The first four operations give the lists exactly as they are there: every failure is an error,
/// and every length that a list can have is read. They throw std::runtime_error with what failed
/// and the SDK's text for it. The others are single commands to the camera, for who may ignore that
/// one fails.
class CameraLists
{
    Q_DECLARE_TR_FUNCTIONS(CameraLists)

public:
    /// A list's buffer counts its entries in 16 bits.
    static constexpr int MaxEntries = 65535;

    /// @p camera must outlive the object.
    explicit CameraLists(const Camera& camera)
        : m_camera(camera)
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

    /// Reads a number.
    /// @param command camera::GetMaxUserEntries, GetFactoryCount or GetUserCount
    /// @param number what the camera gives; stays as it is when it gives nothing
    /// @return the SDK's result, 0 for success.
    std::int32_t readNumber(std::int32_t command, std::int32_t& number) const;

    /// Reads a list.
    /// @param command camera::GetFactoryList or GetUserList
    /// @param count how many entries it has; the count in the list itself is not looked at
    /// @param entries what it holds, as entries of @p pixelClass; untouched after a failure
    /// @return the SDK's result, 0 for success.
    [[nodiscard]] std::int32_t readList(std::int32_t command, std::size_t count,
                                        Pixelclass pixelClass,
                                        std::vector<BadpixelEntry>& entries) const;

    /// Replaces the user list, as setUserEntries(). Of the count, the list can carry 16 bits.
    /// @return the SDK's result, 0 for success.
    [[nodiscard]] std::int32_t writeUserList(std::span<const BadpixelEntry> entries) const;

private:
    [[nodiscard]] int count(std::int32_t command, const QString& what) const;
    [[nodiscard]] std::vector<BadpixelEntry> list(std::int32_t countCommand,
                                                  std::int32_t listCommand, Pixelclass pixelClass,
                                                  const QString& what) const;
    void check(std::int32_t result, const QString& what) const;

    const Camera& m_camera;
};
