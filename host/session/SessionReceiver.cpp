#include "session/SessionReceiver.h"

#include "session/EventPrinter.h"

#include <events/SelectionChangeEvent.h>
#include <events/SwitchScreenLayoutEvent.h>
#include <events/TransactionEvent.h>

#include <QCoreApplication>

namespace Host {

SessionReceiver::SessionReceiver(EventPrinter& printer) : _printer(printer)
{
}

bool SessionReceiver::event(QEvent* event)
{
    return print(QStringLiteral("receiver"), *event) || QObject::event(event);
}

bool SessionReceiver::eventFilter(QObject* watched, QEvent* event)
{
    // A filter of the application object receives the events of every object of its thread.
    return watched == QCoreApplication::instance() &&
           print(QStringLiteral("QCoreApplication"), *event);
}

bool SessionReceiver::print(const QString& source, const QEvent& event)
{
    switch (static_cast<int>(event.type())) {
    case App::TransactionEvent::eventType: {
        const auto& posted = static_cast<const App::TransactionEvent&>(event);
        _printer.print(source,
                       QStringLiteral("receives the transaction \"%1\", %2, object types %3")
                           .arg(posted.transaction().name(),
                                posted.hasOnlyChanges() ? QStringLiteral("changes only")
                                                        : QStringLiteral("more than changes"))
                           .arg(posted.objectTypeFilter()));
        return true;
    }
    case App::SelectionChangeEvent::eventType:
        _printer.print(source, QStringLiteral("receives a change of the selection"));
        return true;
    case Core::SwitchScreenLayoutEvent::eventType:
        _printer.print(
            source, QStringLiteral("receives a switch to the screen layout of board type %1")
                        .arg(static_cast<const Core::SwitchScreenLayoutEvent&>(event).boardType()));
        return true;
    default:
        return false;
    }
}

} // namespace Host
