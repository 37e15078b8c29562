// SPDX-License-Identifier: MIT
#include "camera/SdkExtras.h"
#include "simulator/SimulatedCameraSdk.h"

#include <QCoreApplication>

std::vector<SdkSwitch> sdkSwitches()
{
    const auto cover = [](CameraSdk& sdk, std::uint32_t devId) {
        if (auto* simulated = dynamic_cast<SimulatedCameraSdk*>(&sdk)) {
            simulated->control(simulated->serialOf(devId)).setCovered(true);
        }
    };
    return {{QStringLiteral("cover"),
             QCoreApplication::translate("SdkExtras", "Cover the simulated camera."), cover}};
}
