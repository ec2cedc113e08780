#pragma once

#include <ovcore/ConsoleObserver.h>

#include <QElapsedTimer>

class QString;

namespace Host {

/// Prints what happens, a line each: the milliseconds since the report began, who, and what. As an
/// observer of the console service it prints what is logged, too.
class EventPrinter : public Core::ConsoleObserver
{
public:
    EventPrinter();

    void print(const QString& who, const QString& what);
    void write(Severity severity, const QByteArray& line) override;

private:
    QElapsedTimer _elapsed;
};

} // namespace Host
