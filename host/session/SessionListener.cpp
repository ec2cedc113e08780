#include "session/SessionListener.h"

#include "session/EventPrinter.h"

#include <app/Application.h>
#include <events/SelectionChangeEvent.h>
#include <events/SwitchScreenLayoutEvent.h>
#include <events/TransactionEvent.h>
#include <ovdoc/DocObject.h>
#include <ovdoc/Storage.h>
#include <ovdoc/Transaction.h>

#include <QCoreApplication>
#include <QFileInfo>

namespace Host {

namespace {

QString describe(const Doc::Document* document)
{
    if (!document)
        return QStringLiteral("none");
    const Laser::PrintCountParams counts =
        document->storage()->queryDocObjectDirect()->printCountData();
    return QStringLiteral("%1, %2 of %3 finished")
        .arg(QFileInfo(document->filePath()).fileName())
        .arg(counts.finishedCount())
        .arg(counts.targetCount());
}

} // namespace

SessionListener::SessionListener(EventPrinter& printer) : _printer(printer)
{
    App::Application& application = App::Application::instance();
    application.addActiveDocumentListener(this);
    application.addStartFinishListener(this);
    application.addCloseDocumentListener(this);
    application.addNewDocumentListener(this);
    application.addObjectListListener(this);
    application.addPluginStateChangeListener(this);
    application.addPropertyListener(this);
    application.addSelectionListener(this);
    application.addTransactionListener(this);
    QCoreApplication::instance()->installEventFilter(this);
}

void SessionListener::updateActiveDocumentListener(Doc::Document* document)
{
    print(QStringLiteral("active-document"), QStringLiteral("active now: ") + describe(document));
}

void SessionListener::updateAppStartFinishListener()
{
    print(QStringLiteral("start-finish"), QStringLiteral("start-up is complete"));
}

void SessionListener::updateCloseDocumentListener(Doc::Document* document)
{
    print(QStringLiteral("close-document"), QStringLiteral("closed: ") + describe(document));
    _closedDocuments.emplace_back(document);
}

void SessionListener::updateNewDocumentListener(Doc::Document* document)
{
    print(QStringLiteral("new-document"), QStringLiteral("opened: ") + describe(document));
}

void SessionListener::updateObjectListListener(Doc::Document* document)
{
    print(QStringLiteral("object-list"), QStringLiteral("changed in: ") + describe(document));
}

void SessionListener::updatePluginStateListener(int state)
{
    print(QStringLiteral("plug-in-state"), QStringLiteral("state %1").arg(state));
}

void SessionListener::updatePropertyListener(Doc::Document* document, bool flag, int value)
{
    print(QStringLiteral("property"),
          QStringLiteral("flag %1, value %2, in: %3")
              .arg(flag ? QStringLiteral("true") : QStringLiteral("false"))
              .arg(value)
              .arg(describe(document)));
}

void SessionListener::updateSelectionListener(Doc::Document* document)
{
    print(QStringLiteral("selection"), QStringLiteral("changed in: ") + describe(document));
}

void SessionListener::updateTransactionListener(Doc::Document* document,
                                                Doc::Transaction* transaction)
{
    print(QStringLiteral("transaction"),
          QStringLiteral("\"%1\" in: %2").arg(transaction->name(), describe(document)));
}

bool SessionListener::event(QEvent* event)
{
    return printEvent(QStringLiteral("receiver"), *event) || QObject::event(event);
}

bool SessionListener::eventFilter(QObject* watched, QEvent* event)
{
    // A filter of the application object receives the events of every object of its thread.
    return watched == QCoreApplication::instance() &&
           printEvent(QStringLiteral("QCoreApplication"), *event);
}

void SessionListener::print(const QString& kind, const QString& description)
{
    _printer.print(kind + QStringLiteral(" listener"), description);
}

bool SessionListener::printEvent(const QString& receiver, const QEvent& event)
{
    switch (static_cast<int>(event.type())) {
    case App::TransactionEvent::eventType: {
        const auto& posted = static_cast<const App::TransactionEvent&>(event);
        _printer.print(receiver,
                       QStringLiteral("receives the transaction \"%1\", %2, object types %3")
                           .arg(posted.transaction().name(),
                                posted.hasOnlyChanges() ? QStringLiteral("changes only")
                                                        : QStringLiteral("more than changes"))
                           .arg(posted.objectTypeFilter()));
        return true;
    }
    case App::SelectionChangeEvent::eventType:
        _printer.print(receiver, QStringLiteral("receives a change of the selection"));
        return true;
    case Core::SwitchScreenLayoutEvent::eventType:
        _printer.print(
            receiver,
            QStringLiteral("receives a switch to the screen layout of board type %1")
                .arg(static_cast<const Core::SwitchScreenLayoutEvent&>(event).boardType()));
        return true;
    default:
        return false;
    }
}

} // namespace Host
