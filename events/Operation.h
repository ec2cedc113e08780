#pragma once

#include <ovapp_export.h>

namespace App {

/// What the program can be asked to do, as an object. Derive from it and override `execute`.
/// Several operations belong together where they are given the same transaction group:
///
///     const int group = App::Operation::generateTransactionGroup();
///     moveOperation.setTransactionGroup(group);
///     scaleOperation.setTransactionGroup(group);
///
/// The library itself neither makes, groups nor executes operations. One thread at a time.
class OVAPP_EXPORT Operation
{
public:
    /// The type filter stays with the operation; its meaning is that of whoever derives, as is
    /// that of -1.
    explicit Operation(int typeFilter = -1);
    /// A copy has the type filter and the group of its source.
    /// @{
    Operation(const Operation& other);
    Operation& operator=(const Operation& other);
    /// @}
    virtual ~Operation();

    /// Does what the operation is for; false when that failed.
    virtual bool execute() = 0;

    /// The type filter as it was given.
    int typeFilter() const;
    /// Puts the operation into a group; -1 takes it out again. Any number is stored as it is.
    void setTransactionGroup(int group);

    /// A group number for operations to share: 1 at the first call, then counting up to 65536 and
    /// from there on to 0, 1 and so on; never -1. Nothing is locked: calls must not overlap.
    static int generateTransactionGroup();

protected:
    /// The group as it was set; -1 while none has been.
    int transactionGroup() const;

private:
    int _typeFilter;
    int _transactionGroup;
};

} // namespace App
