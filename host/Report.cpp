#include "Report.h"

#include <QByteArray>
#include <QString>
#include <QTextStream>

namespace Host {

Report::Report()
{
    _elapsed.start();
}

void Report::line(const QString& who, const QString& what)
{
    QTextStream(stdout)
        << QStringLiteral("%1 ms  %2  %3").arg(_elapsed.elapsed(), 5).arg(who, -24).arg(what)
        << Qt::endl;
}

void Report::write(Severity severity, const QByteArray& line)
{
    this->line(severity == Severity::Warning ? QStringLiteral("log, warning")
                                             : QStringLiteral("log"),
               QString::fromLocal8Bit(line));
}

} // namespace Host
