// SPDX-License-Identifier: MIT
#include "camera/SdkExtras.h"
#include "simulator/SimulatedCameraSdk.h"
#include "simulator/SimulatedCamerasWindow.h"

std::unique_ptr<QObject> createSdkWindow(CameraSdk& sdk)
{
    auto* simulated = dynamic_cast<SimulatedCameraSdk*>(&sdk);
    if (simulated == nullptr) {
        return nullptr;
    }
    auto window = std::make_unique<SimulatedCamerasWindow>(*simulated);
    window->show();
    return window;
}
