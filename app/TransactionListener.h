#pragma once

#include <ovapp_export.h>

namespace Doc {
class Document;
class Transaction;
} // namespace Doc

namespace App {

/// Told when a document has been changed in a transaction. The library never notifies of it:
/// whoever makes the change does. Register it with `Application`, and remove it there before
/// destroying it. Main thread only.
class OVAPP_EXPORT TransactionListener
{
public:
    virtual ~TransactionListener();

    /// `document` is the active document, whichever one the notification was made for, and null
    /// when there is none; `transaction` is the one given to the notification.
    virtual void updateTransactionListener(Doc::Document* document,
                                           Doc::Transaction* transaction) = 0;
};

} // namespace App
