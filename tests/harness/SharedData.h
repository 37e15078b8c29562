// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// The path of @p name in the folder of recorded data that stands beside the tree, where it is.
/// Tests that need it are skipped without it.
QString sharedData(const char* name);
