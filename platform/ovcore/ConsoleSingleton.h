#pragma once

#include <ovcore_export.h>

#include <QList>
#include <QtGlobal>

#include <mutex>

namespace Core {

class ConsoleObserver;

/// The log service: formats a line and hands it to every attached observer, in the order in which
/// they were attached. All operations may be called from any thread.
class OVCORE_EXPORT ConsoleSingleton
{
public:
    /// The one service; it exists for as long as the program runs.
    static ConsoleSingleton& instance();

    /// Adds an observer of every later line; null and one that is attached already are ignored.
    /// The service does not own it.
    void attachObserver(ConsoleObserver* observer);
    /// Removes an observer. On return it is not being called by any other thread.
    void detachObserver(ConsoleObserver* observer);

    /// Writes one line of any length, formatted as by `printf`. A format that cannot be formatted
    /// is written as it stands. The observers get the bytes as they are given, in whichever
    /// encoding: what the library logs is in the local 8-bit one (`QString::toLocal8Bit`), and so
    /// should be all that shares a log with it.
    void log(const char* format, ...) Q_ATTRIBUTE_FORMAT_PRINTF(2, 3);
    /// Writes one line as `log` does, as a warning.
    void warning(const char* format, ...) Q_ATTRIBUTE_FORMAT_PRINTF(2, 3);

private:
    ConsoleSingleton() = default;

    /// Held while observers are called, so that one may be deleted once it is detached; recursive,
    /// so that an observer may itself log or detach. A standard mutex, since thread sanitizers see
    /// what it orders.
    std::recursive_mutex _mutex;
    QList<ConsoleObserver*> _observers;
};

} // namespace Core
