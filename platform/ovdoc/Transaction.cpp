#include <ovdoc/Transaction.h>

namespace Doc {

Transaction::Transaction(const QString& name) : _name(name)
{
}

Transaction::Transaction(const Transaction& other) = default;

Transaction& Transaction::operator=(const Transaction& other) = default;

Transaction::~Transaction() = default;

QString Transaction::name() const
{
    return _name;
}

void Transaction::setName(const QString& name)
{
    _name = name;
}

} // namespace Doc
