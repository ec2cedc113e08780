#pragma once

#include <ovapp_export.h>

namespace Doc {
class Document;
class Transaction;
} // namespace Doc

namespace App {

/// A listener that is called when a transaction has changed a document. The library itself never
/// sends this notification: the code that makes the change calls
/// `Application::notifyTransactionListeners`.
///
/// Register it with `Application`. Main thread only, including its destruction.
class OVAPP_EXPORT TransactionListener
{
public:
    /// Removes the listener from the application object if it is still registered.
    virtual ~TransactionListener();

    /// `document` is always the active document, even if another one was passed to the notifying
    /// function; null if there is none. `transaction` is passed on unchanged.
    virtual void updateTransactionListener(Doc::Document* document,
                                           Doc::Transaction* transaction) = 0;
};

} // namespace App
