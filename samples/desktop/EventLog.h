#pragma once

#include <app/ActiveDocumentListener.h>
#include <app/AppStartFinishListener.h>
#include <app/CloseDocumentListener.h>
#include <app/NewDocumentListener.h>
#include <app/ObjectListListener.h>
#include <app/PluginStateListener.h>
#include <app/PropertyListener.h>
#include <app/SelectionListener.h>
#include <app/TransactionListener.h>
#include <ovcore/ConsoleObserver.h>
#include <ovdoc/Transaction.h>

#include <QPlainTextEdit>

/// Shows the notifications of listeners of all kinds, the posted events of the library, and the
/// lines of the log.
class EventLog : public QPlainTextEdit,
                 public App::ActiveDocumentListener,
                 public App::AppStartFinishListener,
                 public App::CloseDocumentListener,
                 public App::NewDocumentListener,
                 public App::ObjectListListener,
                 public App::PluginStateListener,
                 public App::PropertyListener,
                 public App::SelectionListener,
                 public App::TransactionListener,
                 public Core::ConsoleObserver
{
    Q_OBJECT

public:
    EventLog();
    ~EventLog() override;

    void updateActiveDocumentListener(Doc::Document* d) override { append("active document", d); }
    void updateAppStartFinishListener() override { append("start finished", QString()); }
    void updateCloseDocumentListener(Doc::Document* d) override { append("close document", d); }
    void updateNewDocumentListener(Doc::Document* d) override { append("new document", d); }
    void updateObjectListListener(Doc::Document* d) override { append("object list", d); }
    void updatePluginStateListener(int state) override { append("plug-in state", state); }
    void updatePropertyListener(Doc::Document*, bool, int v) override { append("property", v); }
    void updateSelectionListener(Doc::Document* d) override { append("selection", d); }
    void updateTransactionListener(Doc::Document*, Doc::Transaction* transaction) override
    {
        append("transaction", transaction->name());
    }
    void write(Severity severity, const QByteArray& line) override;
    bool eventFilter(QObject* receiver, QEvent* event) override;

Q_SIGNALS:
    void warningLogged(const QString& text);

protected:
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    void append(const char* source, const QString& description, bool isWarning = false);
    void append(const char* source, const Doc::Document* document);
    void append(const char* source, int value) { append(source, QString::number(value)); }
};
