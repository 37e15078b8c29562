// SPDX-License-Identifier: MIT
#include <cstddef>
#include <cstdint>

// What a program tells Windows about how it wants to be loaded: the libraries that it imports are
// looked for beside the executable and in the system folder, and nowhere else. Without it Windows
// also looks in the working directory and along the PATH, where anybody can lay a library of the
// same name.
//
// Microsoft's linker writes this record itself, told by /DEPENDENTLOADFLAG. GNU's does not, so it
// is spelled out here; the header of MinGW-w64 has no name for the field.

namespace {

/// IMAGE_LOAD_CONFIG_DIRECTORY64, as far as all versions of Windows have it.
struct LoadConfigDirectory
{
    std::uint32_t size;
    std::uint8_t unused4[74];
    std::uint16_t dependentLoadFlags;
    std::uint8_t unused80[32];
};
static_assert(offsetof(LoadConfigDirectory, dependentLoadFlags) == 78);
static_assert(sizeof(LoadConfigDirectory) == 112);

constexpr std::uint16_t SearchApplicationFolder = 0x200; // LOAD_LIBRARY_SEARCH_APPLICATION_DIR
constexpr std::uint16_t SearchSystemFolder = 0x800;      // LOAD_LIBRARY_SEARCH_SYSTEM32

} // namespace

/// Found by its name: newer linkers do so themselves, for others packaging/windows/set-load-config
/// enters it in the executable's header.
extern "C" [[gnu::used]] const LoadConfigDirectory _load_config_used = {
    .size = sizeof(LoadConfigDirectory),
    .unused4 = {},
    .dependentLoadFlags = SearchApplicationFolder | SearchSystemFolder,
    .unused80 = {},
};
