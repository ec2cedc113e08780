#pragma once

#include <ovsystem_export.h>

#include <QtGlobal>

/// Operating-system calls with the same interface on all systems.
namespace System {

/// Keep-awake requests; the values are those of Windows.
enum ExecutionStateFlag : quint32
{
    /// The other flags are in effect until the next call with this flag; on its own it clears them.
    /// Without it, the other flags only reset the idle timers once.
    ExecutionContinuous = 0x80000000,
    /// The system does not go to sleep when idle.
    ExecutionSystemRequired = 0x00000001,
    /// A request to sleep puts the system into away mode instead.
    ExecutionAwayModeRequired = 0x00000040,
};

/// Sets the calling thread's keep-awake request to `flags` and returns the previous one.
///
/// On Windows this calls `SetThreadExecutionState` and returns its result: 0 if the system rejects
/// the flags. Elsewhere the request is stored per thread; it is initially `ExecutionContinuous`.
///
/// On Linux, `ExecutionSystemRequired` with `ExecutionContinuous` requests an inhibitor from
/// logind, which then neither suspends the system nor considers it idle; `systemd-inhibit --list`
/// shows it. The request is sent and completed by the event loop of the calling thread; without an
/// event loop, nothing is requested. The inhibitor is released when the thread withdraws the
/// request or ends, and at the latest when the process ends, even in a crash. If the user is not
/// permitted to block suspension, the system is only kept from being considered idle. If there is
/// no logind or no answer, or the library was built without libsystemd, the system may go to sleep.
/// The function does not wait for the answer. On other systems nothing prevents sleep.
OVSYSTEM_EXPORT quint32 setThreadExecutionState(quint32 flags);

} // namespace System
