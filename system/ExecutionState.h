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
/// On Linux, `ExecutionSystemRequired` with `ExecutionContinuous` has logind neither suspend the
/// system nor take it for idle, and users find the program in `systemd-inhibit --list`. This ends
/// when no thread asks for it any more, at the latest with the process, however it ends. Where
/// users may not keep the system from being suspended, it is only not taken for idle; where there
/// is no logind or it does not answer, nothing keeps the system awake. The call waits for no
/// answer. Nothing keeps other systems awake.
OVSYSTEM_EXPORT quint32 setThreadExecutionState(quint32 flags);

} // namespace System
