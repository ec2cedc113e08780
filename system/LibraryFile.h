#pragma once

#include <ovsystem_export.h>

#include <QString>

namespace System {

/// What keeps a file from being loaded as a library, in words that follow "because"; empty when
/// nothing does, as far as can be told from its tables.
///
/// Whoever has the system or Qt load a file asks this first. Where files are ELF, the system maps
/// what a file says it holds without asking how long it is, and one that was cut short ends the
/// program with a signal; so does Qt where it follows a table that leads out of the file. Only a
/// regular file is opened, since others may block. A file that is no library costs one look at how
/// it begins. May be called from any thread.
OVSYSTEM_EXPORT QString libraryFileProblem(const QString& path);

} // namespace System
