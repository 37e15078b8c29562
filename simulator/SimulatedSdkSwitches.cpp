// SPDX-License-Identifier: MIT
#include "camera/SdkExtras.h"
#include "simulator/SimulatedCameraSdk.h"

#include <QCoreApplication>

std::vector<SdkSwitch> sdkSwitches()
{
    const auto cover = [](CameraSdk& sdk, std::uint32_t devId) {
        if (auto* simulated = dynamic_cast<SimulatedCameraSdk*>(&sdk)) {
            simulated->setCovered(simulated->serialOf(devId), true);
        }
    };
    return {{QStringLiteral("cover"),
             QCoreApplication::translate("SdkExtras", "Put the lens cap on the simulated camera."),
             cover}};
}
