#include <support/Literals.h>

#include <events/Operation.h>
#include <events/PropertyEvent.h>
#include <events/SelectionChangeEvent.h>
#include <events/SwitchScreenLayoutEvent.h>
#include <events/TransactionEvent.h>

#include <QtTest>

using App::PropertyEvent;

// Receivers built with other versions of the library identify the events by these numbers.
static_assert(int(App::TransactionEvent::eventType) == 1100 &&
              int(App::SelectionChangeEvent::eventType) == 1101 &&
              int(Core::SwitchScreenLayoutEvent::eventType) == 1106);

struct Engraving : App::Operation
{
    using Operation::Operation;
    using Operation::transactionGroup;

    bool execute() override { return true; }
};

/// The values of property events and operations.
class tst_events : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void movedPropertyEventsHaveNoObjectIds()
    {
        PropertyEvent source(Core::PropertyTypeID(1), "two"_s, 3, {4, 5}, 7);
        PropertyEvent event;
        QVERIFY(!event.value().isValid() && event.propertyTypeID() == Core::PropertyTypeID(-1));
        event = std::move(source);
        PropertyEvent target(std::move(event));
        for (const PropertyEvent& moved : {source, event}) {
            QCOMPARE(moved.objectIDs(), QList<int>());
            QCOMPARE(moved.propertyTypeID().value(), 1);
            QVERIFY(moved.objectType() == 3 && moved.referObjectID() == 7);
        }
        QCOMPARE(target.value(), QVariant("two"_s));
        QCOMPARE(target.objectIDs(), QList<int>({4, 5}));
        target = PropertyEvent(Core::PropertyTypeID(1), 2.5, 8, 9);
        QVERIFY(target.objectType() == 8 && target.referObjectID() == 9);
        QCOMPARE(target.objectIDs(), QList<int>());
    }

    void operationsHaveFilterAndGroup()
    {
        Engraving operation(5);
        QCOMPARE(operation.transactionGroup(), -1);
        operation.setTransactionGroup(70000);
        const Engraving copy(operation);
        QVERIFY(copy.transactionGroup() == 70000 && copy.typeFilter() == 5);
        QCOMPARE(Engraving().typeFilter(), -1);
        // The numbers are unique in the process: no other test may generate one.
        for (int expected = 1; expected <= 65536; ++expected)
            QCOMPARE(Engraving::generateTransactionGroup(), expected);
        for (int expected = 0; expected <= 2; ++expected)
            QCOMPARE(Engraving::generateTransactionGroup(), expected);
    }
};

QTEST_APPLESS_MAIN(tst_events)
#include "tst_events.moc"
