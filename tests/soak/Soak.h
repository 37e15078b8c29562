// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/BusDescription.h"
#include "tests/soak/Footprint.h"

#include <QString>

namespace soak {

/// Small cameras with frames every few milliseconds. Their images are large enough for a leak of
/// one in each cycle to show.
BusDescription bus(const QString& eepromFolder);

/// Whether a run has not grown between two moments, apart from the event objects made meanwhile,
/// which stay by design. Prints the difference.
bool hasNotGrown(const Footprint& before, const Footprint& after, int eventObjects);

/// Opens, closes and reopens two cameras through one Camera while other threads pull their cables,
/// drop their frames, cover them and let another program take them, at moments that @p seed
/// decides.
/// @return whether all was as it must be; what was not is printed.
bool restlessCameras(int cycles, unsigned seed);

/// Opens and closes a camera again and again by the window's own commands.
bool opensAndCloses(int cycles);

} // namespace soak
