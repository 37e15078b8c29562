// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

/// One call that reached the recorder, as the processor handed it over: whatever a caller left in
/// the places of arguments that the function does not have is in here too.
struct RecordedCall
{
    std::uint32_t ordinal;
    std::uint64_t integers[6]; ///< argument registers, then the stack
    std::uint64_t doubles[4];  ///< the same first four places, as floating-point registers
};

/// What the recorder does at the next call: bytes go to where an argument points to.
struct RecorderOutput
{
    std::uint32_t argument; ///< from 0
    std::uint32_t size;     ///< bytes; 0 for none
    unsigned char bytes[128];
};

/// The one recorder of the process.
struct Recorder
{
    static constexpr std::uint32_t MaxCalls = 64;
    static constexpr std::uint32_t MaxOutputs = 3;

    RecordedCall calls[MaxCalls];
    std::uint32_t callCount; ///< of all calls, also of those there was no more room for
    std::int32_t result;     ///< what every call returns
    RecorderOutput outputs[MaxOutputs];
};

/// The library's one named export: the recorder, to be read and set between calls.
using RecorderAccess = Recorder* (*)();
inline constexpr const char* RecorderAccessName = "recorder";

/// Another named export: sets the event object from a thread of the library's own.
using RecorderSignal = void (*)(void* event);
inline constexpr const char* RecorderSignalName = "signalFromThread";
