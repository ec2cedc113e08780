#pragma once

#include <ovsystem_export.h>

#include <QString>

namespace System {

/// Why the system lets this process start no other just now, in its own words, such as that it has
/// too many open files; empty when it does. Always empty on Windows. Any thread.
///
/// Ask before `QProcess::start`: where the system refuses, Qt 5 takes the refusal for a process
/// with the identifier -1, and to end that one, as `QProcess` does when it is destroyed at the
/// latest, is to end every process of the user.
OVSYSTEM_EXPORT QString launchProblem();

} // namespace System
