// SPDX-License-Identifier: MIT
#include "darkframes/FitsReader.h"
#include "fuzz/FuzzedFrame.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    return fuzz::readFrame(darkframes::readFits, data, size);
}
