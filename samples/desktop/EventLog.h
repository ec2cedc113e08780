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

#include <QDockWidget>

class QTreeWidget;

/// Shows the notifications of listeners of all kinds, the events that are posted to this widget,
/// and the lines of the log.
class EventLog : public QDockWidget,
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

    void updateActiveDocumentListener(Doc::Document* document) override;
    void updateAppStartFinishListener() override;
    void updateCloseDocumentListener(Doc::Document* document) override;
    void updateNewDocumentListener(Doc::Document* document) override;
    void updateObjectListListener(Doc::Document* document) override;
    void updatePluginStateListener(int state) override;
    void updatePropertyListener(Doc::Document* document, bool flag, int value) override;
    void updateSelectionListener(Doc::Document* document) override;
    void updateTransactionListener(Doc::Document* document, Doc::Transaction* transaction) override;
    void write(Severity severity, const QByteArray& line) override;

protected:
    void customEvent(QEvent* event) override;

private:
    void append(const QString& source, const QString& description);

    QTreeWidget* _list;
};
