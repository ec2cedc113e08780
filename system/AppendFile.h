#pragma once

#include <ovsystem_export.h>

class QFile;

namespace System {

/// Whether what is written may wait in the system's cache, or goes to the disk at once. Windows
/// tells those who watch a file of a change when it reaches the disk; elsewhere it makes no
/// difference.
enum class WriteMode
{
    Cached,
    WriteThrough
};

/// Opens a file, which is created if there is none, for unbuffered writing at its end: also where
/// others write to it, or empty it, meanwhile, so that no one writes over what another has written.
/// Others may read and remove it. False when it cannot be opened.
OVSYSTEM_EXPORT bool openForAppending(QFile& file, WriteMode mode = WriteMode::Cached);

} // namespace System
