// SPDX-License-Identifier: MIT
#pragma once

/// An event object that the camera SDK signals: a HANDLE on Windows, where the SDK itself knows it,
/// and an object of the same behaviour elsewhere.
using EventHandle = void*;

/// Makes an auto-reset event object, not signalled, without a name. It lives as long as the
/// process, since the SDK may signal it at any later time; it is never closed.
EventHandle createEventObject();

/// Waits until @p event is signalled, for at most @p msec milliseconds, and resets it.
/// @return true only when it was signalled; false after a time-out or for a null event.
/// Any thread. A thread may be terminated inside this wait: it holds nothing locked.
bool waitForEventObject(EventHandle event, int msec);

/// Signals @p event: one waiting thread goes on, or the next wait returns at once. Signalling an
/// event that is already signalled changes nothing. Any thread; a null event is ignored.
void signalEventObject(EventHandle event);
