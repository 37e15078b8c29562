// SPDX-License-Identifier: MIT
#pragma once

#include "camera/EventObject.h"
#include "simulator/Mutex.h"

#include <cstddef>
#include <cstdint>
#include <map>

/// The event objects that the user of one handle has bound to SDK events. Any thread may call it.
class EventBindings
{
public:
    /// Binds @p event to @p eventId, not enabled; what was bound to it before is forgotten.
    void bind(std::int32_t eventId, EventHandle event)
    {
        const MutexLock lock(m_mutex);
        m_bindings[eventId] = {event, false};
    }

    /// @return false when nothing is bound to @p eventId
    bool release(std::int32_t eventId)
    {
        const MutexLock lock(m_mutex);
        return m_bindings.erase(eventId) != 0;
    }

    /// @return false when nothing is bound to @p eventId
    bool setEnabled(std::int32_t eventId, bool enabled)
    {
        const MutexLock lock(m_mutex);
        const auto binding = m_bindings.find(eventId);
        if (binding == m_bindings.end()) {
            return false;
        }
        binding->second.enabled = enabled;
        return true;
    }

    /// Signals what is bound to @p eventId, when it is enabled.
    void signal(std::int32_t eventId) const
    {
        const MutexLock lock(m_mutex);
        const auto binding = m_bindings.find(eventId);
        if (binding != m_bindings.end() && binding->second.enabled) {
            signalEventObject(binding->second.event);
        }
    }

    [[nodiscard]] std::size_t size() const
    {
        const MutexLock lock(m_mutex);
        return m_bindings.size();
    }

    void clear()
    {
        const MutexLock lock(m_mutex);
        m_bindings.clear();
    }

private:
    struct Binding
    {
        EventHandle event = nullptr;
        bool enabled = false;
    };
    mutable Mutex m_mutex;
    std::map<std::int32_t, Binding> m_bindings VORN_GUARDED_BY(m_mutex);
};
