#include "EventLog.h"

#include "Messages.h"

#include <app/Application.h>
#include <events/SelectionChangeEvent.h>
#include <events/SwitchScreenLayoutEvent.h>
#include <events/TransactionEvent.h>
#include <ovcore/ConsoleSingleton.h>
#include <ovdoc/Document.h>

#include <QContextMenuEvent>
#include <QCoreApplication>
#include <QFileInfo>
#include <QMenu>
#include <QTime>

#include <memory>

EventLog::EventLog()
{
    constexpr int maximumLines = 1000;
    setReadOnly(true);
    setTabChangesFocus(true);
    setMaximumBlockCount(maximumLines);
    setTabStopDistance(20 * fontMetrics().averageCharWidth());

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
    qApp->installEventFilter(this);
}

EventLog::~EventLog()
{
    Core::ConsoleSingleton::instance().detachObserver(this);
}

void EventLog::write(Severity severity, const QByteArray& line)
{
    // Called on the thread that logs: another thread's line is appended later, on this one.
    QMetaObject::invokeMethod(this, [this, severity, text = QString::fromLocal8Bit(line)] {
        const bool isWarning = severity == Severity::Warning;
        append("log", text, isWarning);
        if (isWarning)
            Q_EMIT warningLogged(text);
    });
}

bool EventLog::eventFilter(QObject* receiver, QEvent* event)
{
    const int type = event->type();
    if (type == App::TransactionEvent::eventType)
        append("event", tr("transaction"));
    else if (type == App::SelectionChangeEvent::eventType)
        append("event", tr("selection"));
    else if (type == Core::SwitchScreenLayoutEvent::eventType)
        append("event", tr("screen layout"));
    return QPlainTextEdit::eventFilter(receiver, event);
}

void EventLog::contextMenuEvent(QContextMenuEvent* event)
{
    const std::unique_ptr<QMenu> menu(createStandardContextMenu());
    menu->addAction(tr("C&lear"), this, &QPlainTextEdit::clear);
    menu->exec(event->globalPos());
}

void EventLog::append(const char* source, const QString& description, bool isWarning)
{
    const QString mark = isWarning ? QString(QChar(0x26a0)) + u' ' : QString(); // the warning sign
    const QString line = QTime::currentTime().toString(QStringLiteral("hh:mm:ss.zzz\t")) + mark +
                         QLatin1String(source) + u'\t' + description;
    const QString colours =
        QStringLiteral("background: %1; color: black").arg(QLatin1String(warningColor));
    appendHtml(QStringLiteral("<span style='white-space: pre-wrap; %1'>%2</span>")
                   .arg(isWarning ? colours : QString(), line.toHtmlEscaped()));
}

void EventLog::append(const char* source, const Doc::Document* document)
{
    append(source, document ? QFileInfo(document->filePath()).fileName() : tr("no document"));
}
