#pragma once

#include <ovsystem_export.h>

#include <QtGlobal>

namespace System {

/// Asks a process to end as a person at the keyboard would, with an interrupt (SIGINT); false when
/// it is not told. `pid` is that of one process: 0 and negative numbers are refused. On Windows,
/// where only a whole console can be interrupted, no process is told.
OVSYSTEM_EXPORT bool interruptProcess(qint64 pid);

} // namespace System
