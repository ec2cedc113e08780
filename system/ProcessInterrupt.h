#pragma once

#include <ovsystem_export.h>

#include <QtGlobal>

namespace System {

/// Interrupts a process as Ctrl+C does (SIGINT). Returns false if the signal cannot be sent, or if
/// `pid` is not positive. Always returns false on Windows, where only all processes of a console
/// can be interrupted.
OVSYSTEM_EXPORT bool interruptProcess(qint64 pid);

} // namespace System
