// SPDX-License-Identifier: MIT
#include "tests/harness/SharedData.h"

QString sharedData(const char* name)
{
    return QStringLiteral(VORN_SHARED_DATA "/") + QLatin1String(name);
}
