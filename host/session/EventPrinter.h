#pragma once

#include <ovcore/ConsoleObserver.h>

#include <QElapsedTimer>

class QString;

namespace Host {

/// Prints one line per event: the time in ms since the printer was created, the source and the
/// description. As an observer of `Core::ConsoleSingleton`, it prints each line of the log too.
class EventPrinter : public Core::ConsoleObserver
{
public:
    EventPrinter();

    /// Prints an event and flushes, so that it is seen even if the program crashes next.
    void print(const QString& source, const QString& description);
    /// Prints a step of the host itself, before it happens.
    void printStep(const QString& step);
    void write(Severity severity, const QByteArray& line) override;

private:
    QElapsedTimer _elapsed;
};

} // namespace Host
