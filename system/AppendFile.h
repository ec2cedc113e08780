#pragma once

#include <ovsystem_export.h>

#include <QStringList>
#include <QtGlobal>

class QFile;

/// In these files, every write goes to the current end, even if others append to the file or
/// truncate it: no writer overwrites the data of another. Others may read and remove the file.
namespace System {

/// Opens a file for unbuffered appending; creates the file if it does not exist. Returns false if
/// the file cannot be opened.
OVSYSTEM_EXPORT bool openForAppending(QFile& file);

/// Starts a program in a detached process, and appends its standard output and standard error to a
/// file, which cannot be removed on Windows meanwhile. A program name without a path is looked up
/// in the system's search path.
///
/// Returns the process ID; 0 if the file cannot be opened or the program cannot be started.
OVSYSTEM_EXPORT qint64 startDetached(const QString& program, const QStringList& arguments,
                                     const QString& outputFilePath);

} // namespace System
