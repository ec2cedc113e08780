#pragma once

#include <ovapp_export.h>

namespace App {

/// An action of the program, as an object. Derive from it and override `execute`.
///
/// Operations with the same transaction group belong together:
///
///     const int group = App::Operation::generateTransactionGroup();
///     moveOperation.setTransactionGroup(group);
///     scaleOperation.setTransactionGroup(group);
///
/// The library itself neither creates, groups nor executes operations. Use an operation on one
/// thread at a time.
class OVAPP_EXPORT Operation
{
public:
    /// Creates an operation without a transaction group. The derived class defines the meaning of
    /// `typeFilter`, including -1.
    explicit Operation(int typeFilter = -1);
    virtual ~Operation();

    /// Executes the operation; returns false on failure.
    virtual bool execute() = 0;

    /// Returns the type filter.
    int typeFilter() const;
    /// Sets the transaction group; -1 means no group. Any number is stored unchanged.
    void setTransactionGroup(int group);

    /// Returns a new group number: 1 in the first call, then one more in each call up to 65536,
    /// then 0, 1 and so on; never -1. The function does not lock: calls must not overlap.
    static int generateTransactionGroup();

protected:
    /// Returns the transaction group; -1 if none has been set.
    int transactionGroup() const;

private:
    int _typeFilter;
    int _transactionGroup;
};

} // namespace App
