// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QString>

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

class CameraSdk;

/// A command-line switch that an SDK brings along, such as the cover of simulated cameras.
struct SdkSwitch
{
    QString name;                                               ///< without the leading dashes
    QString description;                                        ///< for --help
    std::function<void(CameraSdk&, std::uint32_t devId)> apply; ///< before that camera is opened
};

// What an executable's SDK offers beyond the 29 operations. Whoever defines createCameraSdk()
// defines these too, the window in a library of its own where it needs widgets; with the maker's
// library there is nothing.

/// The switches that the command-line companion offers with this SDK.
std::vector<SdkSwitch> sdkSwitches();

/// A window that stands beside the editor and is shown for as long as the object lives, or null.
/// GUI thread; @p sdk must outlive it.
std::unique_ptr<QObject> createSdkWindow(CameraSdk& sdk);
