// SPDX-License-Identifier: MIT
#include "cli/Command.h"

QList<QCommandLineOption> Command::options(const std::vector<SdkSwitch>& /*switches*/) const
{
    return {};
}
