#pragma once

#include <ovapp_export.h>
#include <ovdoc/Transaction.h>

#include <QEvent>

namespace App {

/// Tells a Qt object that a transaction took place. Post it with
/// `Application::postTransactionEvent`. It is handled on the receiver's thread.
class OVAPP_EXPORT TransactionEvent : public QEvent
{
public:
    /// What `type()` returns.
    static constexpr Type eventType = static_cast<Type>(QEvent::User + 100);

    /// Copies the transaction, so that the original may change or go.
    /// @{
    TransactionEvent(const Doc::Transaction& transaction, bool hasOnlyChanges,
                     int objectTypeFilter);
    TransactionEvent(const TransactionEvent& other);
    TransactionEvent& operator=(const TransactionEvent& other);
    /// @}
    ~TransactionEvent() override;

    /// A copy of the transaction.
    Doc::Transaction transaction() const;
    /// The flag as it was given; its meaning is that of whoever posts.
    bool hasOnlyChanges() const;
    /// The number as it was given; its meaning is that of whoever posts.
    int objectTypeFilter() const;

private:
    Doc::Transaction _transaction;
    bool _hasOnlyChanges;
    int _objectTypeFilter;
};

} // namespace App
