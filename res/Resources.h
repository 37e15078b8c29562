// SPDX-License-Identifier: MIT
#pragma once

namespace res {

/// Makes the pictures available under ":/res/". Call it before the first of them is used, from
/// any thread; calling it again changes nothing.
///
/// They are part of a static library: without this call the linker would leave them out.
void load();

} // namespace res
