#include <events/Operation.h>

namespace App {

namespace {

constexpr int wrapThreshold = 65535;

int lastTransactionGroup = 0;

} // namespace

Operation::Operation(int typeFilter) : _typeFilter(typeFilter), _transactionGroup(-1)
{
}

Operation::~Operation() = default;

int Operation::typeFilter() const
{
    return _typeFilter;
}

void Operation::setTransactionGroup(int group)
{
    _transactionGroup = group;
}

int Operation::generateTransactionGroup()
{
    // The comparison precedes the increment, so wrapThreshold + 1 is returned too.
    if (lastTransactionGroup > wrapThreshold)
        lastTransactionGroup = 0;
    else
        ++lastTransactionGroup;
    return lastTransactionGroup;
}

int Operation::transactionGroup() const
{
    return _transactionGroup;
}

} // namespace App
