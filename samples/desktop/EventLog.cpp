#include "EventLog.h"

#include <app/Application.h>
#include <events/SelectionChangeEvent.h>
#include <events/SwitchScreenLayoutEvent.h>
#include <events/TransactionEvent.h>
#include <ovcore/ConsoleSingleton.h>
#include <ovdoc/Document.h>
#include <ovdoc/Transaction.h>

#include <QFileInfo>
#include <QTime>
#include <QTreeWidget>

namespace {

constexpr int maximumLines = 1000;

QString nameOf(const Doc::Document* document)
{
    return document ? QFileInfo(document->filePath()).fileName() : EventLog::tr("no document");
}

} // namespace

EventLog::EventLog() : QDockWidget(tr("Event log")), _list(new QTreeWidget)
{
    setObjectName(QStringLiteral("eventLog"));
    setWidget(_list);
    _list->setRootIsDecorated(false);
    _list->setUniformRowHeights(true);
    _list->setHeaderLabels({tr("Time"), tr("Source"), tr("Description")});
    const int width = _list->fontMetrics().averageCharWidth();
    _list->setColumnWidth(0, 16 * width);
    _list->setColumnWidth(1, 26 * width);

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
    Core::ConsoleSingleton::instance().attachObserver(this);
}

EventLog::~EventLog()
{
    Core::ConsoleSingleton::instance().detachObserver(this);
    App::Application& application = App::Application::instance();
    application.removeActiveDocumentListener(this);
    application.removeStartFinishListener(this);
    application.removeCloseDocumentListener(this);
    application.removeNewDocumentListener(this);
    application.removeObjectListListener(this);
    application.removePluginStateChangeListener(this);
    application.removePropertyListener(this);
    application.removeSelectionListener(this);
    application.removeTransactionListener(this);
}

void EventLog::updateActiveDocumentListener(Doc::Document* document)
{
    append(tr("active document"), nameOf(document));
}

void EventLog::updateAppStartFinishListener()
{
    append(tr("start finished"), tr("the program has started"));
}

void EventLog::updateCloseDocumentListener(Doc::Document* document)
{
    append(tr("close document"), nameOf(document));
}

void EventLog::updateNewDocumentListener(Doc::Document* document)
{
    append(tr("new document"), nameOf(document));
}

void EventLog::updateObjectListListener(Doc::Document* document)
{
    append(tr("object list"), nameOf(document));
}

void EventLog::updatePluginStateListener(int state)
{
    append(tr("plug-in state"), QString::number(state));
}

void EventLog::updatePropertyListener(Doc::Document* document, bool flag, int value)
{
    append(tr("property"),
           tr("%1, %2 in ").arg(flag ? tr("true") : tr("false")).arg(value) + nameOf(document));
}

void EventLog::updateSelectionListener(Doc::Document* document)
{
    append(tr("selection"), nameOf(document));
}

void EventLog::updateTransactionListener(Doc::Document* document, Doc::Transaction* transaction)
{
    append(tr("transaction"), tr("\"%1\" in %2").arg(transaction->name(), nameOf(document)));
}

void EventLog::write(Severity severity, const QByteArray& line)
{
    // Called on the thread that logs: another thread's line is appended later, on this one.
    const QString source = severity == Severity::Warning ? tr("log, warning") : tr("log");
    QMetaObject::invokeMethod(
        this, [this, source, text = QString::fromLocal8Bit(line)] { append(source, text); });
}

void EventLog::customEvent(QEvent* event)
{
    switch (static_cast<int>(event->type())) {
    case App::TransactionEvent::eventType: {
        const auto& posted = static_cast<const App::TransactionEvent&>(*event);
        append(tr("event: transaction"), tr("\"%1\"").arg(posted.transaction().name()));
        break;
    }
    case App::SelectionChangeEvent::eventType:
        append(tr("event: selection"), tr("the selection has changed"));
        break;
    case Core::SwitchScreenLayoutEvent::eventType:
        append(tr("event: screen layout"),
               tr("board type %1")
                   .arg(static_cast<const Core::SwitchScreenLayoutEvent&>(*event).boardType()));
        break;
    default:
        QDockWidget::customEvent(event);
    }
}

void EventLog::append(const QString& source, const QString& description)
{
    if (_list->topLevelItemCount() == maximumLines)
        delete _list->takeTopLevelItem(0);
    auto* item =
        new QTreeWidgetItem(_list, {QTime::currentTime().toString(QStringLiteral("hh:mm:ss.zzz")),
                                    source, description});
    _list->scrollToItem(item);
}
