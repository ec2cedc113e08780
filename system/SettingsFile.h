#pragma once

#include <ovsystem_export.h>

class QSettings;
class QString;

namespace System {

/// Removes the lock beside a settings file if no living process holds it. `QSettings` takes that
/// lock before it writes; one that a process left behind which was killed before it had put its
/// name to it would hold up the next writer for half a minute. Call it before `QSettings` writes.
///
/// It returns at once where there is no lock, and else takes a fifth of a second at most. A lock
/// that is held stays.
OVSYSTEM_EXPORT void removeAbandonedLock(const QString& settingsFile);

/// What becomes of changes that a full disk kept from being written.
enum class Unwritten
{
    Hold, ///< they hold in memory, and are tried again with the next write
    Drop  ///< the settings become what the file holds
};

/// Has `settings`, an INI file, write its changes and read those of others, as `QSettings::sync`
/// does, and past an abandoned lock. Where a full disk cuts the file short, which `QSettings` takes
/// for a success, the file becomes again what it was. With `Unwritten::Drop` there is nothing left
/// that the destructor of `settings` would write.
///
/// Meanwhile the former file stays beside the new one, under the name of `settings` with ".kept";
/// where a file system has no hard links, nothing is kept.
OVSYSTEM_EXPORT void writeSettings(QSettings& settings, Unwritten unwritten = Unwritten::Hold);

} // namespace System
