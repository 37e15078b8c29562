// SPDX-License-Identifier: MIT
#pragma once

#include "camera/EventObject.h"

#include <cstddef>
#include <cstdint>
#include <map>

/// The event objects that the user of one handle has bound to SDK events. Without locking.
class EventBindings
{
public:
    /// Binds @p event to @p eventId, not enabled; what was bound to it before is forgotten.
    void bind(std::int32_t eventId, EventHandle event) { m_bindings[eventId] = {event, false}; }

    /// @return false when nothing is bound to @p eventId
    bool release(std::int32_t eventId) { return m_bindings.erase(eventId) != 0; }

    /// @return false when nothing is bound to @p eventId
    bool setEnabled(std::int32_t eventId, bool enabled)
    {
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
        const auto binding = m_bindings.find(eventId);
        if (binding != m_bindings.end() && binding->second.enabled) {
            signalEventObject(binding->second.event);
        }
    }

    [[nodiscard]] std::size_t size() const { return m_bindings.size(); }

    void clear() { m_bindings.clear(); }

private:
    struct Binding
    {
        EventHandle event = nullptr;
        bool enabled = false;
    };
    std::map<std::int32_t, Binding> m_bindings;
};
