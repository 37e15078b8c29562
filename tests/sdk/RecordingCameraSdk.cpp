// SPDX-License-Identifier: MIT
#include "tests/sdk/RecordingCameraSdk.h"

#include <utility>

namespace {

/// Whether the caller has put something into the variables that the result goes to.
bool variablesGoIn(SdkOperation operation)
{
    switch (operation) {
    case SdkOperation::GetError:
    case SdkOperation::GetFirmwareUploadTime:
    case SdkOperation::GetFrameTimeRange:
    case SdkOperation::InitCamera:
        return true;
    default:
        return false;
    }
}

bool leavesVariablesAloneOnFailure(SdkOperation operation)
{
    switch (operation) {
    case SdkOperation::AllocImageMemory:
    case SdkOperation::GetFrameTimeRange:
    case SdkOperation::InitCamera:
        return true;
    default:
        return false;
    }
}

/// The text of one argument; null for one of which nothing goes in.
class ArgumentText
{
public:
    ArgumentText(SdkOperation operation, const QList<const char*>& memory)
        : m_operation(operation)
        , m_memory(memory)
    {}

    QString operator()(std::int32_t number) const { return QString::number(number); }
    QString operator()(CameraSdk::Handle handle) const { return QString::number(handle); }
    QString operator()(double number) const { return QString::number(number, 'g', 12); }
    QString operator()(const char* fileName) const { return QString::fromLatin1(fileName); }
    QString operator()(char* memory) const
    {
        const auto index = m_memory.indexOf(memory);
        return index < 0 ? QStringLiteral("unknown memory")
                         : QStringLiteral("memory%1").arg(index + 1);
    }
    QString operator()(void* object) const
    {
        if (m_operation == SdkOperation::InitEvent) {
            return {}; // an event object has no name
        }
        return object == nullptr ? QStringLiteral("null") : QStringLiteral("an object");
    }
    QString operator()(char** /*pointer*/) const { return {}; }
    QString operator()(SensorInfo* /*info*/) const { return {}; }
    QString operator()(CameraList* /*list*/) const { return {}; }
    template <typename Number>
    QString operator()(Number* variable) const
    {
        return variablesGoIn(m_operation) ? (*this)(*variable) : QString();
    }

private:
    const SdkOperation m_operation;
    const QList<const char*>& m_memory;
};

} // namespace

QStringList RecordingCameraSdk::takeCalls()
{
    const std::lock_guard lock(m_mutex);
    return std::exchange(m_calls, {});
}

void RecordingCameraSdk::note(const QString& text)
{
    const std::lock_guard lock(m_mutex);
    m_calls.append(text);
}

QString RecordingCameraSdk::text(const SdkCall& call) const
{
    const ArgumentText argumentText(call.operation, m_memory);
    QStringList texts;
    for (const SdkArgument& argument : call.arguments) {
        const QString text = std::visit(argumentText, argument);
        if (!text.isNull()) {
            texts.append(text);
        }
    }
    return QStringLiteral("%1(%2)").arg(QString::fromLatin1(name(call.operation)),
                                        texts.join(QLatin1String(", ")));
}

std::int32_t RecordingCameraSdk::record(const SdkCall& call)
{
    const std::lock_guard lock(m_mutex);
    m_calls.append(text(call));
    QList<std::int32_t>& answers = results[m_calls.last()];
    return answers.isEmpty() ? 0 : answers.takeFirst();
}

std::int32_t RecordingCameraSdk::through(const SdkCall& call)
{
    const std::int32_t failure = record(call);
    if (failure == 0 || !leavesVariablesAloneOnFailure(call.operation)) {
        const std::int32_t result = call.forward();
        if (call.operation == SdkOperation::AllocImageMemory && result == 0) {
            const std::lock_guard lock(m_mutex);
            m_memory.append(*std::get<char**>(call.arguments[4]));
        }
        return failure != 0 ? failure : result;
    }
    if (failure == camera::FirmwareUploadNeeded && call.operation == SdkOperation::InitCamera) {
        *std::get<Handle*>(call.arguments[0]) += 100; // what it leaves there is the SDK's business
    }
    return failure;
}
