#pragma once

#include <ovcore_export.h>

#include <QList>
#include <QtGlobal>

#include <mutex>

namespace Core {

class ConsoleObserver;

/// The log: formats a line and passes it to every attached observer, in the order of attachment.
/// All functions may be called from any thread.
class OVCORE_EXPORT ConsoleSingleton
{
public:
    /// Returns the only object; it exists until the program ends.
    static ConsoleSingleton& instance();

    /// Adds an observer, which receives all further lines; does nothing if `observer` is null or
    /// already attached. Does not take ownership.
    void attachObserver(ConsoleObserver* observer);
    /// Removes an observer. When this function returns, no other thread is calling the observer.
    void detachObserver(ConsoleObserver* observer);

    /// Passes one line of any length to the observers, formatted as by `printf`. If formatting
    /// fails, the line is `format` itself. The observers receive the bytes unchanged. The library
    /// logs in the local 8-bit encoding (`QString::toLocal8Bit`); other callers should do so too.
    void log(const char* format, ...) Q_ATTRIBUTE_FORMAT_PRINTF(2, 3);
    /// Passes on one line as `log` does, with the severity `Warning`.
    void warning(const char* format, ...) Q_ATTRIBUTE_FORMAT_PRINTF(2, 3);

private:
    ConsoleSingleton() = default;

    /// Locked while observers are called, so that an observer may be deleted once it is detached.
    /// Recursive, so that observers may log, attach and detach. A standard mutex, because thread
    /// sanitizers do not recognise Qt's.
    std::recursive_mutex _mutex;
    QList<ConsoleObserver*> _observers;
};

} // namespace Core
