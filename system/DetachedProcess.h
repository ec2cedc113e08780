#pragma once

#include <ovsystem_export.h>

#include <QStringList>
#include <QtGlobal>

namespace System {

/// Starts a program in a detached process, and appends its standard output and standard error to a
/// file. A program name without a path is looked up in the system's search path.
///
/// Others may append to the file, truncate and read it at the same time, and remove it while no
/// process has it open. No writer overwrites the data of another.
///
/// Returns the process ID; 0 if the file cannot be opened or the program cannot be started.
OVSYSTEM_EXPORT qint64 startDetached(const QString& program, const QStringList& arguments,
                                     const QString& outputFilePath);

} // namespace System
