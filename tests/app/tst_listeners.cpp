#include <support/Listener.h>
#include <support/ListenerModel.h>
#include <support/Literals.h>
#include <support/Session.h>

#include <events/SelectionChangeEvent.h>
#include <events/SwitchScreenLayoutEvent.h>
#include <events/TransactionEvent.h>
#include <ovdoc/Storage.h>

#include <QtTest>

#include <random>
#include <thread>

using App::Application;

namespace {

void notify(Application& application, Doc::Document* document)
{
    Doc::Transaction transaction("move"_s);
    application.notifyNewDocumentListener(document);
    application.notifyCloseDocumentListener(document);
    application.notifyActiveDocumentListener(document);
    application.notifyObjectListListener(document);
    application.notifyTransactionListeners(document, &transaction);
    application.notifySelectionListeners(document);
    application.notifyPropertyListeners(document, true, 5);
    application.notifyPluginStateChangeListener(-3);
    application.notifyStartFinishListener();
}

/// Returns the calls that listeners with these names receive from `notify` with the document
/// "given".
QStringList expectedCalls(const QString& names, const QString& active)
{
    QStringList calls;
    for (const QString& call : "new given;close given;active given;objects %1;transaction %1 move;"
                               "selection %1;property given 1 5;state -3;started"_s.split(u';')) {
        for (const QChar name : names)
            calls.append(name + ": "_s + QString(call).replace("%1"_s, active));
    }
    return calls;
}

/// Records the events that an object of this thread receives.
struct Receiver : QObject
{
    explicit Receiver(QObject* watched) : _watched(watched)
    {
        QCoreApplication::instance()->installEventFilter(this);
    }
    bool eventFilter(QObject* object, QEvent* event) override
    {
        if (object != _watched)
            return false;
        if (event->type() == App::TransactionEvent::eventType) {
            const auto transactionEvent = static_cast<App::TransactionEvent*>(event);
            received.append("transaction %1 %2 %3"_s.arg(transactionEvent->transaction().name())
                                .arg(transactionEvent->hasOnlyChanges())
                                .arg(transactionEvent->objectTypeFilter()));
        } else if (event->type() == App::SelectionChangeEvent::eventType) {
            received.append("selection"_s);
        } else if (event->type() == Core::SwitchScreenLayoutEvent::eventType) {
            received.append(
                "layout %1"_s.arg(static_cast<Core::SwitchScreenLayoutEvent*>(event)->boardType()));
        }
        return event->type() >= QEvent::User;
    }

    QStringList received;

private:
    QObject* const _watched;
};

} // namespace

class tst_listeners : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyKindInOrderOfRegistration()
    {
        const Session session;
        Application& application = session.application();
        Doc::Document active(new Doc::Storage);
        active.setFilePath("active"_s);
        Doc::Document given(new Doc::Storage);
        given.setFilePath("given"_s);
        application.setActivateDocument(&active);
        notify(application, &given);

        QStringList calls;
        const auto listener = [&calls](const QString& name) {
            return Listener(
                [&calls, name](const QString& call) { calls.append(name + ": "_s + call); });
        };
        Listener a = listener("A"_s);
        Listener b = listener("B"_s);
        Listener c = listener("C"_s);
        for (Listener* added : {&a, &b, &a, static_cast<Listener*>(nullptr), &c, &b})
            add(application, added);
        notify(application, &given);
        QCOMPARE(calls, expectedCalls("ABC"_s, "active"_s));

        for (Listener* removed : {&b, &b, static_cast<Listener*>(nullptr)})
            remove(application, removed);
        calls.clear();
        notify(application, &given);
        QCOMPARE(calls, expectedCalls("AC"_s, "active"_s));

        add(application, &b);
        QVERIFY(application.closeDocument());
        calls.clear();
        notify(application, &given);
        QCOMPARE(calls, expectedCalls("ACB"_s, "none"_s));
    }

    void randomChangesDuringNotifications()
    {
        std::mt19937 random(20210);
        ListenerModel model(
            [&random](unsigned end) { return static_cast<unsigned>(random() % end); });
        // A list that has grown is not reallocated soon, so each session begins with new lists.
        for (int sessions = 0; sessions < 500; ++sessions) {
            const Session session;
            for (int round = 0; round < 10; ++round) {
                model.play();
                QVERIFY2(!model.problem(), model.problem());
            }
            model.clear();
        }
        QVERIFY(model.calls() > 50000);
    }

    void activeDocumentIsReadForEachListener()
    {
        const Session session;
        QStringList calls;
        Actor closer;
        closer.act = [] { Application::instance().setActivateDocument(nullptr); };
        Listener after([&calls](const QString& call) { calls.append(call); });
        session.application().addSelectionListener(&closer);
        session.application().addSelectionListener(&after);
        session.application().setActivateDocument(new Doc::Document(new Doc::Storage));
        session.application().notifySelectionListeners(nullptr);
        QCOMPARE(calls, QStringList({"selection none"_s}));
    }

    void overlappingIterationsOnTwoThreads()
    {
        // The iteration of the other thread begins before the one of this thread, and ends during
        // it.
        const Session session;
        Application& application = session.application();
        QSemaphore begun;
        QSemaphore mayEnd;
        Actor waiting;
        waiting.act = [&] {
            begun.release();
            mayEnd.acquire();
        };
        application.addStartFinishListener(&waiting);
        std::thread other([&application] { application.notifyStartFinishListener(); });
        begun.acquire();

        QStringList calls;
        Actor remover;
        Listener removed([&calls](const QString&) { calls.append("removed"_s); });
        Listener last([&calls](const QString&) { calls.append("last"_s); });
        remover.act = [&] {
            mayEnd.release();
            other.join();
            application.removeSelectionListener(&removed);
        };
        application.addSelectionListener(&remover);
        application.addSelectionListener(&removed);
        application.addSelectionListener(&last);
        application.notifySelectionListeners(nullptr);
        QCOMPARE(calls, QStringList({"last"_s}));
    }

    void postedEventsArriveInOrder()
    {
        const Session session;
        QObject receiver;
        for (QObject* const target : {&receiver, static_cast<QObject*>(nullptr)}) {
            QObject* const posted = target ? target : QCoreApplication::instance();
            const Receiver recorder(posted);
            // Events with the priorities -1 and 1 show that the library posts with priority 0.
            QCoreApplication::postEvent(posted, new Core::SwitchScreenLayoutEvent(-1), -1);
            std::thread([&] {
                Doc::Transaction transaction("move"_s);
                session.application().postTransactionEvent(transaction, target != nullptr, -7,
                                                           target);
                transaction.setName("changed after posting"_s);
                session.application().postSelectionChangedEvent(target);
                session.application().postPluginStateChangedEvent(target);
            }).join();
            QCoreApplication::postEvent(posted, new Core::SwitchScreenLayoutEvent(1), 1);
            QVERIFY(recorder.received.isEmpty());

            QCoreApplication::sendPostedEvents(posted);
            QCOMPARE(recorder.received,
                     QStringList({"layout 1"_s, "transaction move %1 -7"_s.arg(target != nullptr),
                                  "selection"_s, "layout -1"_s}));
        }
    }
};

QTEST_GUILESS_MAIN(tst_listeners)
#include "tst_listeners.moc"
