// SPDX-License-Identifier: MIT
#include "res/Resources.h"

#include <QtGlobal>

// Outside of any namespace, because Q_INIT_RESOURCE declares a function of the global one.
static void initialiseResources()
{
    Q_INIT_RESOURCE(res);
}

namespace res {

void load()
{
    initialiseResources();
}

} // namespace res
