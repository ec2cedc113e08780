#include <system/SettingsLock.h>

#include <QFileInfo>
#include <QLockFile>

namespace System {

void removeAbandonedLock(const QString& settingsFile)
{
    const QString path = settingsFile + QStringLiteral(".lock");
    if (!QFileInfo::exists(path))
        return;
    // Whoever holds a lock also has the system's lock on its file, or holds it open on Windows, and
    // Qt removes no such file, however old it is. Only between making the file and locking it does
    // a process depend on the file's age.
    QLockFile lock(path);
    lock.setStaleLockTime(100);
    [[maybe_unused]] const bool removed = lock.tryLock(200);
}

} // namespace System
