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

#include <QString>

#include <memory>
#include <vector>

namespace Host {

class EventPrinter;

/// A listener of every kind that prints each notification. It also owns the closed documents, which
/// the library does not delete.
class SessionListener : public App::ActiveDocumentListener,
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
    /// Registers itself with the application object as a listener of every kind.
    explicit SessionListener(EventPrinter& printer);
    SessionListener(const SessionListener&) = delete;
    SessionListener& operator=(const SessionListener&) = delete;
    /// Deletes the closed documents. Its base classes remove it from the lists.
    ~SessionListener() override;

    void updateActiveDocumentListener(Doc::Document* document) override;
    void updateAppStartFinishListener() override;
    void updateCloseDocumentListener(Doc::Document* document) override;
    void updateNewDocumentListener(Doc::Document* document) override;
    void updateObjectListListener(Doc::Document* document) override;
    void updatePluginStateListener(int state) override;
    void updatePropertyListener(Doc::Document* document, bool flag, int value) override;
    void updateSelectionListener(Doc::Document* document) override;
    void updateTransactionListener(Doc::Document* document, Doc::Transaction* transaction) override;

private:
    void print(const QString& kind, const QString& description);

    EventPrinter& _printer;
    std::vector<std::unique_ptr<Doc::Document>> _closedDocuments;
};

} // namespace Host
