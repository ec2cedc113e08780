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

const PropertyEvent someEvent(Core::PropertyTypeID(1), "two"_s, 3, {4, 5, 6}, 7);

/// Returns the fields in order, with the IDs in one string.
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

/// The values of posted events, property events and operations, and of their copies.
class tst_events : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void postedEventsKeepTypeAndData()
    {
        // Receivers built with other versions of the library identify the events by these numbers.
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

    void propertyEventsAreValues()
    {
        QCOMPARE(fields(PropertyEvent(Core::PropertyTypeID(1), 2.5, 3, 7)),
                 QVariantList({1, 2.5, 3, QString(), 7}));
        QCOMPARE(fields(PropertyEvent()), QVariantList({-1, QVariant(), -1, QString(), -1}));

        const PropertyEvent first = someEvent;
        PropertyEvent second;
        second = first;
        const PropertyEvent third(second);
        const PropertyEvent& self = second;
        second = self;
        QCOMPARE(fields(second), someFields);
        second = PropertyEvent();
        QCOMPARE(fields(first), someFields);
        QCOMPARE(fields(third), someFields);

        PropertyEvent source = someEvent;
        QCOMPARE(fields(PropertyEvent(std::move(source))), someFields);
        QCOMPARE(fields(source), QVariantList({1, QVariant(), 3, QString(), 7}));
        source = someEvent;
        PropertyEvent target(Core::PropertyTypeID(9), 9, 9, {9, 9}, 9);
        target = std::move(source);
        QCOMPARE(fields(target), someFields);
        // The value of the source is unspecified.
        QCOMPARE(fields(source), QVariantList({1, source.value(), 3, QString(), 7}));
    }

    void groupNumbersWrapAround()
    {
        // The numbers are unique in the process: no other test may generate one.
        for (int expected = 1; expected <= 65536; ++expected)
            QCOMPARE(Operation::generateTransactionGroup(), expected);
        for (int expected = 0; expected <= 2; ++expected)
            QCOMPARE(Operation::generateTransactionGroup(), expected);
    }

    void operationsCopyFilterAndGroup()
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
