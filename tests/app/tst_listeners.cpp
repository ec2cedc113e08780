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

/// What the listeners of these names note of all that when "given" is the document given.
QStringList notesOf(const QString& names, const QString& active)
{
    QStringList notes;
    for (const QString& told : "new given;close given;active given;objects %1;transaction %1 move;"
                               "selection %1;property given 1 5;state -3;started"_s.split(u';')) {
        for (const QChar name : names)
            notes.append(name + ": "_s + QString(told).replace("%1"_s, active));
    }
    return notes;
}

/// Keeps the events that reach an object of this thread.
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
    void kinds()
    {
        const Session session;
        Application& application = session.application();
        Doc::Document active(new Doc::Storage);
        active.setFilePath("active"_s);
        Doc::Document given(new Doc::Storage);
        given.setFilePath("given"_s);
        application.setActivateDocument(&active);
        notify(application, &given);

        QStringList notes;
        const auto listener = [&notes](const QString& name) {
            return Listener(
                [&notes, name](const QString& told) { notes.append(name + ": "_s + told); });
        };
        Listener a = listener("A"_s);
        Listener b = listener("B"_s);
        Listener c = listener("C"_s);
        for (Listener* added : {&a, &b, &a, static_cast<Listener*>(nullptr), &c, &b})
            add(application, added);
        notify(application, &given);
        QCOMPARE(notes, notesOf("ABC"_s, "active"_s));

        for (Listener* removed : {&b, &b, static_cast<Listener*>(nullptr)})
            remove(application, removed);
        notes.clear();
        notify(application, &given);
        QCOMPARE(notes, notesOf("AC"_s, "active"_s));

        add(application, &b);
        QVERIFY(application.closeDocument());
        notes.clear();
        notify(application, &given);
        QCOMPARE(notes, notesOf("ACB"_s, "none"_s));
    }

    void randomChanges()
    {
        std::mt19937 random(20210);
        ListenerModel model(
            [&random](unsigned end) { return static_cast<unsigned>(random() % end); });
        // A list that has grown once stays where it is in memory: each session begins with new
        // ones.
        for (int start = 0; start < 500; ++start) {
            const Session session;
            for (int round = 0; round < 10; ++round) {
                model.play();
                QVERIFY2(!model.problem(), model.problem());
            }
            model.clear();
        }
        QVERIFY(model.calls() > 50000);
    }

    void activeDocumentChangesMeanwhile()
    {
        const Session session;
        QStringList notes;
        Actor closer;
        closer.act = [] { Application::instance().setActivateDocument(nullptr); };
        Listener after([&notes](const QString& told) { notes.append(told); });
        session.application().addSelectionListener(&closer);
        session.application().addSelectionListener(&after);
        session.application().setActivateDocument(new Doc::Document(new Doc::Storage));
        session.application().notifySelectionListeners(nullptr);
        QCOMPARE(notes, QStringList({"selection none"_s}));
    }

    void walksOnTwoThreads()
    {
        // The other thread's walk begins before this one's and ends within it.
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

        QStringList notes;
        Actor remover;
        Listener removed([&notes](const QString&) { notes.append("removed"_s); });
        Listener last([&notes](const QString&) { notes.append("last"_s); });
        remover.act = [&] {
            mayEnd.release();
            other.join();
            application.removeSelectionListener(&removed);
        };
        application.addSelectionListener(&remover);
        application.addSelectionListener(&removed);
        application.addSelectionListener(&last);
        application.notifySelectionListeners(nullptr);
        QCOMPARE(notes, QStringList({"last"_s}));
    }

    void posting()
    {
        const Session session;
        QObject receiver;
        for (QObject* const target : {&receiver, static_cast<QObject*>(nullptr)}) {
            QObject* const posted = target ? target : QCoreApplication::instance();
            const Receiver recorder(posted);
            // Priorities above and below show that ours is 0.
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
