#include <events/TransactionEvent.h>

namespace App {

TransactionEvent::TransactionEvent(const Doc::Transaction& transaction, bool hasOnlyChanges,
                                   int objectTypeFilter)
    : QEvent(eventType), _transaction(transaction), _hasOnlyChanges(hasOnlyChanges),
      _objectTypeFilter(objectTypeFilter)
{
}

TransactionEvent::~TransactionEvent() = default;

Doc::Transaction TransactionEvent::transaction() const
{
    return _transaction;
}

bool TransactionEvent::hasOnlyChanges() const
{
    return _hasOnlyChanges;
}

int TransactionEvent::objectTypeFilter() const
{
    return _objectTypeFilter;
}

} // namespace App
