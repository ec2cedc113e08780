#pragma once

#include <ovsystem_export.h>

#include <QString>

namespace System {

/// Returns the reason why a file cannot be loaded as a library, as a clause such as "it is not a
/// regular file"; empty if its tables are valid.
///
/// Call this before the system or Qt loads a file. The loader of ELF systems maps segments without
/// checking the file size, and a truncated file crashes the program; so does Qt if a table refers
/// to data beyond the end of the file. Only regular files are opened, since others may block. If
/// the file is not a library, only its header is read. May be called from any thread.
OVSYSTEM_EXPORT QString libraryFileError(const QString& path);

/// Returns whether a file contains a text, such as the name of a library that it is linked to.
/// Returns false if the file cannot be mapped into memory. Call it only for files that
/// `libraryFileError` does not reject. May be called from any thread.
OVSYSTEM_EXPORT bool fileContains(const QString& path, const char* text);

} // namespace System
