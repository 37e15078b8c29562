// SPDX-License-Identifier: MIT
#include "cli/Command.h"
#include "cli/ListFiles.h"
#include "fuzz/FuzzedFile.h"
#include "hotpixel/BadpixelListFile.h"

#include <algorithm>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const fuzz::FuzzedFile file(fuzz::bytes(data, size));
    std::vector<BadpixelEntry> entries;
    try {
        entries = cli::readUserListFile(file.name());
    } catch (const cli::CommandError&) {
        return 0;
    }
    fuzz::expect(
        std::ranges::all_of(
            entries, [](const BadpixelEntry& entry) { return entry.pixelClass == UserPixel; }),
        "nothing but user entries passes");
    // A file of one empty line is an empty list here and an entry at (0, 0) in the editor.
    if (!entries.empty()) {
        fuzz::expect(entries == hotpixel::readListFile(file.name()),
                     "what may go into a camera is read alike by the editor");
    }
    return 0;
}
