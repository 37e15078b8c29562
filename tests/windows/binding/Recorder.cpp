// SPDX-License-Identifier: MIT
// A library with the ordinals of "Vorn_api_64.dll" that knows nothing of the functions behind them:
// every ordinal stores the argument registers and the stack as they are. So it sees what a caller
// really passes, whatever the caller's declarations say.

#include "Recorder.h"

#include <cstring>
#include <windows.h>

namespace {

Recorder theRecorder = {};

DWORD WINAPI setEvent(void* event)
{
    SetEvent(event);
    return 0;
}

} // namespace

extern "C" {

std::int32_t recordCall(std::uint32_t ordinal, const std::uint64_t* registers,
                        const std::uint64_t* doubles, const std::uint64_t* stack)
{
    Recorder& recorder = theRecorder;
    if (recorder.callCount < Recorder::MaxCalls) {
        RecordedCall& call = recorder.calls[recorder.callCount];
        call.ordinal = ordinal;
        std::memcpy(call.integers, registers, 4 * sizeof(std::uint64_t));
        std::memcpy(call.integers + 4, stack, 2 * sizeof(std::uint64_t));
        std::memcpy(call.doubles, doubles, sizeof(call.doubles));
        for (const RecorderOutput& output : recorder.outputs) {
            if (output.size != 0) {
                std::memcpy(reinterpret_cast<void*>(call.integers[output.argument]), output.bytes,
                            output.size);
            }
        }
    }
    ++recorder.callCount;
    return recorder.result;
}

Recorder* recorder()
{
    return &theRecorder;
}

void signalFromThread(void* event)
{
    const HANDLE thread = CreateThread(nullptr, 0, setEvent, event, 0, nullptr);
    WaitForSingleObject(thread, INFINITE);
    CloseHandle(thread);
}
}

// The x64 calling convention: the first four arguments in rcx, rdx, r8, r9 or in xmm0 to xmm3, room
// for these four above the return address, and the further ones behind that room.
asm(R"(
    .text
record:
    pushq %rbp
    movq %rsp, %rbp
    subq $96, %rsp
    movq %rcx, 32(%rsp)
    movq %rdx, 40(%rsp)
    movq %r8, 48(%rsp)
    movq %r9, 56(%rsp)
    movq %xmm0, 64(%rsp)
    movq %xmm1, 72(%rsp)
    movq %xmm2, 80(%rsp)
    movq %xmm3, 88(%rsp)
    movl %eax, %ecx
    leaq 32(%rsp), %rdx
    leaq 64(%rsp), %r8
    leaq 48(%rbp), %r9
    call recordCall
    leave
    ret

    .irp ordinal, 3, 5, 17, 23, 36, 38, 55, 56, 57, 58, 68, 69, 70, 205, 213, 215, 221, 231, 233, 237, 239, 247, 271, 273, 299, 312, 335, 441, 484
    .globl ordinal_\ordinal
ordinal_\ordinal:
    movl $\ordinal, %eax
    jmp record
    .endr
)");
