// SPDX-License-Identifier: MIT
#pragma once

namespace support {

/// Makes the character encoding of this process UTF-8 where the environment names another one, as
/// every container without a LANG does: the language stays where it has a UTF-8 form, and becomes
/// "C.UTF-8" where it has none. The environment says so from then on, to the toolkit and to child
/// processes. Nothing happens when the encoding is UTF-8 already, on Windows, and where no UTF-8
/// locale is installed.
///
/// Call it first in main(): the toolkit chooses as well, and warns on standard error, where nothing
/// but the program's own words belongs. Main thread, before any other one is started.
void chooseUtf8Locale();

/// Whether the environment that the program was started in shows the UTF-8 that is printed,
/// whatever chooseUtf8Locale() made of the process since. A locale that is not installed here, as
/// over ssh, says by its name what the terminal shows. Always true on Windows, where the programs
/// see to it.
[[nodiscard]] bool environmentShowsUtf8();

} // namespace support
