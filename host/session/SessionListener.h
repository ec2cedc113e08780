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
#include <ovdoc/Document.h>

#include <QObject>
#include <QString>

#include <memory>
#include <vector>

namespace Host {

class EventPrinter;

/// A listener of every kind that prints each notification, and each event that the library posts to
/// it or to the `QCoreApplication`. It also owns the closed documents, which the library does not
/// delete.
class SessionListener : public QObject,
                        public App::ActiveDocumentListener,
                        public App::AppStartFinishListener,
                        public App::CloseDocumentListener,
                        public App::NewDocumentListener,
                        public App::ObjectListListener,
                        public App::PluginStateListener,
                        public App::PropertyListener,
                        public App::SelectionListener,
                        public App::TransactionListener
{
public:
    /// Registers itself with the application object as a listener of every kind, and with the
    /// `QCoreApplication` as an event filter.
    explicit SessionListener(EventPrinter& printer);

    void updateActiveDocumentListener(Doc::Document* document) override;
    void updateAppStartFinishListener() override;
    void updateCloseDocumentListener(Doc::Document* document) override;
    void updateNewDocumentListener(Doc::Document* document) override;
    void updateObjectListListener(Doc::Document* document) override;
    void updatePluginStateListener(int state) override;
    void updatePropertyListener(Doc::Document* document, bool flag, int value) override;
    void updateSelectionListener(Doc::Document* document) override;
    void updateTransactionListener(Doc::Document* document, Doc::Transaction* transaction) override;

    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void print(const QString& kind, const QString& description);
    /// Prints the event and returns true if it is one that the library posts.
    bool printEvent(const QString& receiver, const QEvent& event);

    EventPrinter& _printer;
    std::vector<std::unique_ptr<Doc::Document>> _closedDocuments;
};

} // namespace Host
