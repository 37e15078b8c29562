// SPDX-License-Identifier: MIT
#include "camera/SdkExtras.h"

// The maker's library brings nothing along: no switches for the command line, no window.

std::vector<SdkSwitch> sdkSwitches()
{
    return {};
}

std::unique_ptr<QObject> createSdkWindow(CameraSdk& /*sdk*/)
{
    return nullptr;
}
