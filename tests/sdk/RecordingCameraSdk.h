// SPDX-License-Identifier: MIT
#pragma once

#include "tests/sdk/ForwardingCameraSdk.h"

#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>

#include <mutex>

/// Writes each call down as one line of text, with the arguments that go in, before it passes the
/// call on. Image memory is written as "memory1", "memory2" and so on, in the order of allocation.
///
/// A call can be told to fail. It reaches the SDK behind all the same, whose results through
/// pointers the caller may have to ignore; only what opens a camera, allocates memory or asks for
/// the range of frame times then leaves its variables alone. Any thread.
class RecordingCameraSdk final : public ForwardingCameraSdk
{
public:
    using ForwardingCameraSdk::ForwardingCameraSdk;

    QMap<QString, QList<std::int32_t>> results; ///< of a call, once for each time it is made

    /// The calls so far, which are forgotten.
    QStringList takeCalls();

    /// Writes something else down between the calls.
    void note(const QString& text);

private:
    std::int32_t through(const SdkCall& call) override;
    std::int32_t record(const SdkCall& call);
    QString text(const SdkCall& call) const;

    std::mutex m_mutex; ///< event threads call too
    QStringList m_calls;
    QList<const char*> m_memory;
};
