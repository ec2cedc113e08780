#pragma once

#include <ovapp_export.h>
#include <ovdoc/Transaction.h>

#include <QEvent>

namespace App {

/// Notifies a Qt object that a transaction has taken place.
///
/// Post it with `Application::postTransactionEvent`. It is handled on the receiver's thread.
class OVAPP_EXPORT TransactionEvent : public QEvent
{
public:
    /// The value that `type()` returns.
    static constexpr Type eventType = static_cast<Type>(QEvent::User + 100);

    /// Creates an event with a copy of the transaction; the original may be changed or destroyed.
    TransactionEvent(const Doc::Transaction& transaction, bool hasOnlyChanges,
                     int objectTypeFilter);
    ~TransactionEvent() override;

    /// Returns a copy of the transaction.
    Doc::Transaction transaction() const;
    /// Returns the flag; its meaning is application-defined.
    bool hasOnlyChanges() const;
    /// Returns the object type filter; its values are application-defined.
    int objectTypeFilter() const;

private:
    Doc::Transaction _transaction;
    bool _hasOnlyChanges;
    int _objectTypeFilter;
};

} // namespace App
