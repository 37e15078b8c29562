// SPDX-License-Identifier: MIT
#include "camera/SdkExtras.h"
#include "simulator/SimulatedCameraSdk.h"

#include <QCoreApplication>

namespace {

/// Where these texts belong.
struct Text
{
    Q_DECLARE_TR_FUNCTIONS(SimulatedSdkSwitches)
};

} // namespace

std::vector<SdkSwitch> sdkSwitches()
{
    const auto cover = [](CameraSdk& sdk, std::uint32_t devId) {
        if (auto* simulated = dynamic_cast<SimulatedCameraSdk*>(&sdk)) {
            simulated->control(simulated->serialOf(devId)).setCovered(true);
        }
    };
    return {{QStringLiteral("cover"), Text::tr("Cover the simulated camera."), cover}};
}
