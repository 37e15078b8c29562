// SPDX-License-Identifier: MIT
#include "simulator/SimulatedCameraSdk.h"

#include <QtGlobal>

std::unique_ptr<CameraSdk> createCameraSdk()
{
    BusDescription bus = simulator::readBus();
    if (!bus.message.isEmpty()) {
        qWarning("%s", qUtf8Printable(bus.message));
    }
    return std::make_unique<SimulatedCameraSdk>(std::move(bus));
}
