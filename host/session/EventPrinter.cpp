#include "session/EventPrinter.h"

#include "Output.h"

#include <QByteArray>
#include <QString>

namespace Host {

EventPrinter::EventPrinter()
{
    _elapsed.start();
}

void EventPrinter::print(const QString& source, const QString& description)
{
    const QString text = QStringLiteral("%1 ms  %2  %3")
                             .arg(_elapsed.elapsed(), 5)
                             .arg(source, -24)
                             .arg(description);
    Host::print(stdout, escapeNonPrintable(text));
}

void EventPrinter::printStep(const QString& step)
{
    print(QStringLiteral("host"), step);
}

void EventPrinter::write(Severity severity, const QByteArray& line)
{
    print(severity == Severity::Warning ? QStringLiteral("log, warning") : QStringLiteral("log"),
          QString::fromLocal8Bit(line));
}

} // namespace Host
