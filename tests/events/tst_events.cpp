#include <support/Literals.h>

#include <events/Operation.h>
#include <events/PropertyEvent.h>
#include <events/SelectionChangeEvent.h>
#include <events/SwitchScreenLayoutEvent.h>
#include <events/TransactionEvent.h>

#include <QtTest>

#include <limits>

using App::Operation;
using App::PropertyEvent;

namespace {

struct Engraving : Operation
{
    using Operation::Operation;
    using Operation::transactionGroup;

    bool execute() override { return true; }
};

PropertyEvent someEvent()
{
    return PropertyEvent(Core::PropertyTypeID(1), "two"_s, 3, {4, 5, 6}, 7);
}

/// The fields in their order, the IDs as one text.
QVariantList fields(const PropertyEvent& event)
{
    QStringList ids;
    for (const int id : event.objectIDs())
        ids += QString::number(id);
    return {event.propertyTypeID().value(), event.value(), event.objectType(), ids.join(u' '),
            event.referObjectID()};
}

const QVariantList someFields{1, "two"_s, 3, "4 5 6"_s, 7};

} // namespace

/// What the posted events, property events and operations carry, from copy to copy too.
class tst_events : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void postedEvents()
    {
        // Receivers that were built against other versions know the events by number.
        QCOMPARE(static_cast<int>(App::SelectionChangeEvent().type()), 1101);

        Doc::Transaction transaction("cut"_s);
        const App::TransactionEvent event(transaction, false, -1);
        transaction.setName("changed"_s);
        App::TransactionEvent assigned(transaction, true, 3);
        assigned = event;
        const App::TransactionEvent copy(assigned);
        QCOMPARE(static_cast<int>(copy.type()), 1100);
        QCOMPARE(copy.transaction().name(), "cut"_s);
        QVERIFY(!copy.hasOnlyChanges());
        QCOMPARE(copy.objectTypeFilter(), -1);

        for (const int type : {std::numeric_limits<int>::min(), -1, 0, 1106}) {
            Core::SwitchScreenLayoutEvent layout(5);
            layout = Core::SwitchScreenLayoutEvent(type);
            QCOMPARE(layout.boardType(), type);
            QCOMPARE(static_cast<int>(layout.type()), 1106);
        }
    }

    void propertyEvents()
    {
        QCOMPARE(fields(PropertyEvent(Core::PropertyTypeID(1), 2.5, 3, 7)),
                 QVariantList({1, 2.5, 3, QString(), 7}));
        QCOMPARE(fields(PropertyEvent()), QVariantList({-1, QVariant(), -1, QString(), -1}));

        const PropertyEvent first = someEvent();
        PropertyEvent second;
        second = first;
        const PropertyEvent third(second);
        const PropertyEvent& self = second;
        second = self;
        QCOMPARE(fields(second), someFields);
        second = PropertyEvent();
        QCOMPARE(fields(first), someFields);
        QCOMPARE(fields(third), someFields);

        PropertyEvent source = someEvent();
        QCOMPARE(fields(PropertyEvent(std::move(source))), someFields);
        QCOMPARE(fields(source), QVariantList({1, QVariant(), 3, QString(), 7}));
        source = someEvent();
        PropertyEvent target(Core::PropertyTypeID(9), 9, 9, {9, 9}, 9);
        target = std::move(source);
        QCOMPARE(fields(target), someFields);
        // The value is the one thing that the two may have exchanged.
        QCOMPARE(fields(source), QVariantList({1, source.value(), 3, QString(), 7}));
    }

    void groupNumbers()
    {
        // The numbers are the process's own, so nothing else here may draw one.
        for (int expected = 1; expected <= 65536; ++expected)
            QCOMPARE(Operation::generateTransactionGroup(), expected);
        for (int expected = 0; expected <= 2; ++expected)
            QCOMPARE(Operation::generateTransactionGroup(), expected);
    }

    void operations()
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

QTEST_APPLESS_MAIN(tst_events)
#include "tst_events.moc"
