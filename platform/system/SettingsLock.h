#pragma once

#include <ovsystem_export.h>

class QString;

namespace System {

/// Removes the lock beside a settings file if no living process holds it. `QSettings` takes that
/// lock before it writes; one that a process left behind which was killed before it had put its
/// name to it would hold up the next writer for half a minute. Call it before `QSettings` writes.
///
/// It returns at once where there is no lock, and else takes a fifth of a second at most. A lock
/// that is held stays.
OVSYSTEM_EXPORT void removeAbandonedLock(const QString& settingsFile);

} // namespace System
