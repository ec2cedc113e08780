#include "session/EventPrinter.h"

#include "process/Output.h"

#include <QByteArray>
#include <QString>

namespace Host {

Report::Report()
{
    _elapsed.start();
}

void Report::line(const QString& who, const QString& what)
{
    const QString text =
        QStringLiteral("%1 ms  %2  %3").arg(_elapsed.elapsed(), 5).arg(who, -24).arg(what);
    print(stdout, onOneLine(text));
}

void Report::write(Severity severity, const QByteArray& line)
{
    this->line(severity == Severity::Warning ? QStringLiteral("log, warning")
                                             : QStringLiteral("log"),
               QString::fromLocal8Bit(line));
}

} // namespace Host
