#pragma once

#include <ovsystem_export.h>

class QFile;

namespace System {

/// Whether the system caches written data or writes it to the disk at once. On Windows, file
/// watchers are only notified when the data reaches the disk. Other systems ignore the mode.
enum class WriteMode
{
    Cached,
    WriteThrough
};

/// Opens a file for unbuffered appending; creates the file if it does not exist. Every write goes
/// to the current end of the file, even if others append to the file or truncate it: no writer
/// overwrites the data of another. Others may read and remove the file. Returns false if the file
/// cannot be opened.
OVSYSTEM_EXPORT bool openForAppending(QFile& file, WriteMode mode = WriteMode::Cached);

} // namespace System
