#pragma once

#include <support/Literals.h>

#include <app/ActiveDocumentListener.h>
#include <app/Application.h>
#include <app/AppStartFinishListener.h>
#include <app/CloseDocumentListener.h>
#include <app/NewDocumentListener.h>
#include <app/ObjectListListener.h>
#include <app/PluginStateListener.h>
#include <app/PropertyListener.h>
#include <app/SelectionListener.h>
#include <app/TransactionListener.h>
#include <ovdoc/Document.h>
#include <ovdoc/Transaction.h>

#include <functional>

inline QString nameOf(const Doc::Document* document)
{
    return document ? document->filePath() : "none"_s;
}

/// A listener of every kind. Passes a description of each notification to a function.
struct Listener : App::ActiveDocumentListener,
                  App::AppStartFinishListener,
                  App::CloseDocumentListener,
                  App::NewDocumentListener,
                  App::ObjectListListener,
                  App::PluginStateListener,
                  App::PropertyListener,
                  App::SelectionListener,
                  App::TransactionListener
{
    explicit Listener(const std::function<void(const QString&)>& onCall) : _onCall(onCall) {}

    void updateActiveDocumentListener(Doc::Document* document) override
    {
        pass("active", document);
    }
    void updateAppStartFinishListener() override { _onCall("started"_s); }
    void updateCloseDocumentListener(Doc::Document* document) override { pass("close", document); }
    void updateNewDocumentListener(Doc::Document* document) override { pass("new", document); }
    void updateObjectListListener(Doc::Document* document) override { pass("objects", document); }
    void updatePluginStateListener(int state) override { _onCall("state %1"_s.arg(state)); }
    void updatePropertyListener(Doc::Document* document, bool flag, int value) override
    {
        _onCall("property %1 %2 %3"_s.arg(nameOf(document)).arg(flag).arg(value));
    }
    void updateSelectionListener(Doc::Document* document) override { pass("selection", document); }
    void updateTransactionListener(Doc::Document* document, Doc::Transaction* transaction) override
    {
        _onCall("transaction %1 %2"_s.arg(nameOf(document), transaction->name()));
    }

private:
    void pass(const char* kind, const Doc::Document* document)
    {
        _onCall(QLatin1String(kind) + u' ' + nameOf(document));
    }

    const std::function<void(const QString&)> _onCall;
};

/// Adds `listener` to the lists of every kind.
inline void add(App::Application& application, Listener* listener)
{
    application.addNewDocumentListener(listener);
    application.addCloseDocumentListener(listener);
    application.addActiveDocumentListener(listener);
    application.addObjectListListener(listener);
    application.addTransactionListener(listener);
    application.addSelectionListener(listener);
    application.addPropertyListener(listener);
    application.addPluginStateChangeListener(listener);
    application.addStartFinishListener(listener);
}

/// Removes `listener` from the lists of every kind.
inline void remove(App::Application& application, Listener* listener)
{
    application.removeNewDocumentListener(listener);
    application.removeCloseDocumentListener(listener);
    application.removeActiveDocumentListener(listener);
    application.removeObjectListListener(listener);
    application.removeTransactionListener(listener);
    application.removeSelectionListener(listener);
    application.removePropertyListener(listener);
    application.removePluginStateChangeListener(listener);
    application.removeStartFinishListener(listener);
}
