#pragma once

#include <ovcore/ConsoleObserver.h>

#include <QElapsedTimer>

class QString;

namespace Host {

/// Prints what happens, a line each: the milliseconds since the report began, who, and what. As an
/// observer of the console service it prints what is logged, too.
class Report : public Core::ConsoleObserver
{
public:
    Report();

    void line(const QString& who, const QString& what);
    void write(Severity severity, const QByteArray& line) override;

private:
    QElapsedTimer _elapsed;
};

} // namespace Host
