// SPDX-License-Identifier: MIT
#include "tests/sdk/FaultyCameraSdk.h"

#include <bit>
#include <cstring>
#include <limits>

namespace {

constexpr std::int32_t GarbageNumber = -1515870811; // 0xA5A5A5A5
constexpr int GarbageByte = 0xA5;

// A pointer that nobody may follow after a failure; its address has no mapping.
char* garbagePointer()
{
    return std::bit_cast<char*>(std::uintptr_t{0xA5A5A5A5A5});
}

bool givesSomethingBack(SdkOperation operation)
{
    switch (operation) {
    case SdkOperation::StopLiveVideo:
    case SdkOperation::FreeImageMemory:
    case SdkOperation::ExitEvent:
    case SdkOperation::DisableEvent:
    case SdkOperation::ClearSequence:
    case SdkOperation::ExitCamera:
        return true;
    default:
        return false;
    }
}

/// Writes through each out-parameter of one call what a caller can do least with.
class Nonsense
{
public:
    explicit Nonsense(SdkOperation operation)
        : m_doubles(doublesOf(operation))
        , m_integers(operation == SdkOperation::GetPixelClockRange
                         ? std::array{0x5A5A5A5A, GarbageNumber}
                         : std::array{GarbageNumber, GarbageNumber})
    {}

    void operator()(std::int32_t* number) { *number = m_integers.at(m_integer++); }
    void operator()(double* number) { *number = m_doubles.at(m_double++); }
    void operator()(CameraSdk::Handle* handle) const
    {
        *handle = static_cast<CameraSdk::Handle>(GarbageNumber);
    }
    void operator()(char** pointer) const { *pointer = garbagePointer(); }
    void operator()(SensorInfo* info) const { std::memset(info, GarbageByte, sizeof *info); }
    void operator()(CameraList* list) const
    {
        list->count = static_cast<std::uint32_t>(GarbageNumber);
    }

    // What goes in.
    void operator()(std::int32_t /*number*/) const {}
    void operator()(CameraSdk::Handle /*handle*/) const {}
    void operator()(double /*number*/) const {}
    void operator()(const char* /*fileName*/) const {}
    void operator()(char* /*memory*/) const {}
    void operator()(void* /*object*/) const {}

private:
    static std::array<double, 3> doublesOf(SdkOperation operation)
    {
        constexpr double NotANumber = std::numeric_limits<double>::quiet_NaN();
        switch (operation) {
        case SdkOperation::SetFrameRate:
            return {-1e300};
        case SdkOperation::SetExposureTime:
            return {std::numeric_limits<double>::infinity()};
        case SdkOperation::GetFrameTimeRange:
            return {0.0, NotANumber, 0.0};
        case SdkOperation::GetExposureRange:
            return {1e300, -1e300, 0.0};
        default:
            return {NotANumber, NotANumber, NotANumber};
        }
    }

    const std::array<double, 3> m_doubles;
    const std::array<std::int32_t, 2> m_integers;
    std::size_t m_double = 0;
    std::size_t m_integer = 0;
};

void leaveNonsense(const SdkCall& call)
{
    Nonsense nonsense(call.operation);
    for (const SdkArgument& argument : call.arguments) {
        std::visit(nonsense, argument);
    }
    // Only the commands that read write into their buffer.
    if (call.operation == SdkOperation::HotpixelCommand &&
        std::get<std::int32_t>(call.arguments[1]) != camera::SetUserList) {
        void* const buffer = std::get<void*>(call.arguments[2]);
        const auto size = std::get<std::int32_t>(call.arguments[3]);
        if (buffer != nullptr && size > 0) {
            std::memset(buffer, GarbageByte, static_cast<std::size_t>(size));
        }
    }
}

} // namespace

void FaultyCameraSdk::arm(std::optional<SdkFault> fault)
{
    const std::lock_guard lock(m_mutex);
    m_fault = fault;
    m_calls.fill(0);
    m_struck = false;
}

int FaultyCameraSdk::calls(SdkOperation operation) const
{
    const std::lock_guard lock(m_mutex);
    return m_calls[static_cast<std::size_t>(operation)];
}

FaultyCameraSdk::Outcome FaultyCameraSdk::count(SdkOperation operation)
{
    const std::lock_guard lock(m_mutex);
    const int call = ++m_calls[static_cast<std::size_t>(operation)];
    if (!m_fault || m_fault->operation != operation || m_fault->call != call) {
        return Outcome::PassOn;
    }
    m_struck = true;
    return m_fault->garbage ? Outcome::FailWithGarbage : Outcome::Fail;
}

std::int32_t FaultyCameraSdk::through(const SdkCall& call)
{
    const Outcome outcome = count(call.operation);
    if (outcome == Outcome::PassOn) {
        return call.forward();
    }
    if (givesSomethingBack(call.operation)) {
        static_cast<void>(call.forward());
    } else if (outcome == Outcome::FailWithGarbage) {
        leaveNonsense(call);
    }
    return FaultCode;
}
