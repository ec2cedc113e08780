#pragma once

#include <ovsystem_export.h>

#include <QtGlobal>

/// Calls of the operating system, under names that are the same on every system.
namespace System {

/// Keep-awake requests; the values are those of Windows.
enum ExecutionStateFlag : quint32
{
    /// Without it the other requests only restart the idle timers once; with it they hold until
    /// the next call with it, and alone it withdraws them.
    ExecutionContinuous = 0x80000000,
    /// The system does not go to sleep when idle.
    ExecutionSystemRequired = 0x00000001,
    /// A request to sleep puts the system into away mode instead.
    ExecutionAwayModeRequired = 0x00000040,
};

/// Sets the calling thread's keep-awake request to `flags` and returns the one it replaces.
///
/// On Windows this is `SetThreadExecutionState`, with its result: 0 when the system refuses the
/// flags. Elsewhere the request is remembered, thread by thread, and a thread that made none holds
/// `ExecutionContinuous` alone.
///
/// On Linux, `ExecutionSystemRequired` with `ExecutionContinuous` requests an inhibitor from
/// logind, which then neither suspends the system nor considers it idle; `systemd-inhibit --list`
/// shows it. The request is made and completes in the event loop of the calling thread; a thread
/// without one requests nothing. The inhibitor is released when the thread withdraws the request or
/// ends, and at the latest when the process ends, however it ends. If users may not prevent the
/// system from being suspended, it is only not considered idle. If there is no logind or no answer,
/// or the library was built without libsystemd, the system may go to sleep. The call waits for no
/// answer. On other systems nothing prevents sleep.
OVSYSTEM_EXPORT quint32 setThreadExecutionState(quint32 flags);

} // namespace System
