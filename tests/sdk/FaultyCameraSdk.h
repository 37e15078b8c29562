// SPDX-License-Identifier: MIT
#pragma once

#include "tests/sdk/ForwardingCameraSdk.h"

#include <array>
#include <atomic>
#include <mutex>
#include <optional>

/// One fault: the @p call-th call (from 1) of an operation fails.
struct SdkFault
{
    SdkOperation operation;
    int call;
    bool garbage; ///< also write nonsense through the out-parameters
};

/// Passes every call on to another SDK, counts the calls of each operation, and lets the chosen one
/// fail with FaultCode.
///
/// A failing call does not reach the other SDK. The exceptions are the operations that give
/// something back (stopLiveVideo, freeImageMemory, exitEvent, disableEvent, clearSequence and
/// exitCamera): there the SDK does its work and reports a failure all the same, as hardware that
/// has gone does; a camera that was never let go could not be opened again by anybody. Any thread.
class FaultyCameraSdk : public ForwardingCameraSdk
{
public:
    static constexpr std::int32_t FaultCode = 77;

    using ForwardingCameraSdk::ForwardingCameraSdk;

    /// Arms @p fault, or nothing; the counts start again at 0.
    void arm(std::optional<SdkFault> fault);

    /// Calls of @p operation since the last arm().
    [[nodiscard]] int calls(SdkOperation operation) const;

    /// Whether the armed fault has struck.
    [[nodiscard]] bool struck() const { return m_struck; }

private:
    enum class Outcome { PassOn, Fail, FailWithGarbage };

    std::int32_t through(const SdkCall& call) override;
    Outcome count(SdkOperation operation);

    mutable std::mutex m_mutex;
    std::array<int, SdkOperationCount> m_calls{};
    std::optional<SdkFault> m_fault;
    std::atomic<bool> m_struck = false;
};
