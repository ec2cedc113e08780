#pragma once

#include <ovsystem_export.h>

#include <QStringList>
#include <QtGlobal>

namespace System {

/// Starts a program as a process of its own, which this one neither waits for nor stops, and has
/// both its output channels appended to a file. Others may write to the file too, and may read it,
/// empty it and, for as long as nothing holds it open, remove it meanwhile: no one writes over what
/// another has written. A program named without a path is looked for where the system looks.
///
/// Returns the identifier of the process, or 0 when the file cannot be opened or the program not
/// started.
OVSYSTEM_EXPORT qint64 startDetached(const QString& program, const QStringList& arguments,
                                     const QString& outputFilePath);

} // namespace System
