#pragma once

#include <ovsystem_export.h>

class QSettings;
class QString;

/// INI files that remain complete on a full disk. `QSettings` reports success for a file that was
/// truncated, and it writes in its event handler, its destructor, and the constructor of another
/// object for the same file. Objects of `openSettings` first check whether the file can be written;
/// until it can, changes remain in memory. All functions are thread-safe.
namespace System {

/// Opens an INI file in UTF-8, for the current thread. The event loop writes changes later, as it
/// does for any `QSettings`; it tries again every second if they cannot be written. While a file
/// cannot be written, all callers get the same object for it.
OVSYSTEM_EXPORT QSettings* openSettings(const QString& path);

/// Writes the changes to an object of `openSettings`, and reads those of other processes. Does
/// nothing if the free space on the disk is not larger than the size of the file plus 1 MiB, or if
/// the lock file of another process cannot be removed, for which `QSettings::sync` would wait
/// forever.
OVSYSTEM_EXPORT void syncSettings(QSettings& settings);

/// Writes the changes and deletes the object. Changes that cannot be written remain in memory, for
/// the event loop of the main thread and for the next caller of `openSettings`. Does nothing with
/// null.
OVSYSTEM_EXPORT void closeSettings(QSettings* settings);

} // namespace System
