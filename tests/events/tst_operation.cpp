#include <events/Operation.h>

#include <QtTest>

using App::Operation;

namespace {

struct Engraving : Operation
{
    using Operation::Operation;
    using Operation::transactionGroup;

    bool execute() override { return true; }
};

} // namespace

class tst_operation : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void groupNumbers()
    {
        // The numbers are the process's own, so nothing else here may draw one.
        for (int expected = 1; expected <= 65536; ++expected)
            QCOMPARE(Operation::generateTransactionGroup(), expected);
        for (int expected = 0; expected <= 2; ++expected)
            QCOMPARE(Operation::generateTransactionGroup(), expected);
    }

    void filterAndGroup()
    {
        QCOMPARE(Engraving().typeFilter(), -1);
        Engraving operation(5);
        QCOMPARE(operation.transactionGroup(), -1);
        for (const int group : {70000, -8, 0, -1}) {
            operation.setTransactionGroup(group);
            Engraving assigned;
            assigned = operation;
            const Engraving copy(assigned);
            QCOMPARE(copy.transactionGroup(), group);
            QCOMPARE(copy.typeFilter(), 5);
        }
    }
};

QTEST_APPLESS_MAIN(tst_operation)
#include "tst_operation.moc"
