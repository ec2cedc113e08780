#include <ovcore/ConsoleSingleton.h>

#include <ovcore/ConsoleObserver.h>

#include <QByteArray>

#include <cstdarg>
#include <cstdio>

namespace Core {

namespace {

QByteArray formatted(const char* format, va_list arguments)
{
    va_list again;
    va_copy(again, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, arguments);
    QByteArray line;
    if (length < 0) {
        line = format;
    } else {
        // Includes the terminating NUL, since the memory of an empty array must not be written.
        line.resize(length + 1);
        std::vsnprintf(line.data(), static_cast<std::size_t>(length) + 1, format, again);
        line.chop(1);
    }
    va_end(again);
    return line;
}

void writeToAll(const QList<ConsoleObserver*>& observers, ConsoleObserver::Severity severity,
                const char* format, va_list arguments)
{
    if (observers.isEmpty())
        return;

    const QByteArray line = formatted(format, arguments);
    // Observers may attach and detach observers.
    // NOLINTNEXTLINE(performance-unnecessary-copy-initialization)
    const QList<ConsoleObserver*> attached = observers;
    for (ConsoleObserver* observer : attached) {
        if (observers.contains(observer))
            observer->write(severity, line);
    }
}

} // namespace

ConsoleSingleton& ConsoleSingleton::instance()
{
    static ConsoleSingleton console;
    return console;
}

void ConsoleSingleton::attachObserver(ConsoleObserver* observer)
{
    const std::lock_guard lock(_mutex);
    if (observer && !_observers.contains(observer))
        _observers.append(observer);
}

void ConsoleSingleton::detachObserver(ConsoleObserver* observer)
{
    const std::lock_guard lock(_mutex);
    _observers.removeOne(observer);
}

void ConsoleSingleton::log(const char* format, ...)
{
    const std::lock_guard lock(_mutex);
    va_list arguments;
    va_start(arguments, format);
    writeToAll(_observers, ConsoleObserver::Severity::Log, format, arguments);
    va_end(arguments);
}

void ConsoleSingleton::warning(const char* format, ...)
{
    const std::lock_guard lock(_mutex);
    va_list arguments;
    va_start(arguments, format);
    writeToAll(_observers, ConsoleObserver::Severity::Warning, format, arguments);
    va_end(arguments);
}

} // namespace Core
