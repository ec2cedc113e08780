#include <support/Literals.h>

#include <events/SelectionChangeEvent.h>
#include <events/SwitchScreenLayoutEvent.h>
#include <events/TransactionEvent.h>

#include <QtTest>

#include <limits>
#include <memory>

class tst_events : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void numbers()
    {
        // Receivers that were built against other versions know these by number.
        const App::TransactionEvent transaction(Doc::Transaction(), false, 0);
        const App::SelectionChangeEvent selection;
        const Core::SwitchScreenLayoutEvent layout(0);
        QCOMPARE(static_cast<int>(transaction.type()), 1100);
        QCOMPARE(static_cast<int>(selection.type()), 1101);
        QCOMPARE(static_cast<int>(layout.type()), 1106);
        QCOMPARE(App::SelectionChangeEvent(selection).type(), selection.type());
    }

    void payload()
    {
        Doc::Transaction transaction("cut"_s);
        const App::TransactionEvent event(transaction, false, -1);
        transaction.setName("changed"_s);
        QCOMPARE(event.transaction().name(), "cut"_s);
        QVERIFY(!event.hasOnlyChanges());
        QCOMPARE(event.objectTypeFilter(), -1);

        App::TransactionEvent assigned(transaction, true, 3);
        assigned = event;
        const std::unique_ptr<QEvent> copy = std::make_unique<App::TransactionEvent>(assigned);
        QCOMPARE(copy->type(), event.type());
        const auto& copied = static_cast<const App::TransactionEvent&>(*copy);
        QCOMPARE(copied.transaction().name(), "cut"_s);
        QVERIFY(!copied.hasOnlyChanges());
        QCOMPARE(copied.objectTypeFilter(), -1);
    }

    void boardTypes()
    {
        for (const int type : {std::numeric_limits<int>::min(), -1, 0, 1106}) {
            Core::SwitchScreenLayoutEvent assigned(5);
            assigned = Core::SwitchScreenLayoutEvent(type);
            QCOMPARE(assigned.boardType(), type);
            QCOMPARE(static_cast<int>(assigned.type()), 1106);
        }
    }
};

QTEST_APPLESS_MAIN(tst_events)
#include "tst_events.moc"
