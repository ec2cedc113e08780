#include <support/Literals.h>
#include <support/Session.h>

#include <app/ActiveDocumentListener.h>
#include <app/AppStartFinishListener.h>
#include <app/CloseDocumentListener.h>
#include <app/NewDocumentListener.h>
#include <app/ObjectListListener.h>
#include <app/PluginStateListener.h>
#include <app/PropertyListener.h>
#include <app/SelectionListener.h>
#include <app/TransactionListener.h>
#include <events/SelectionChangeEvent.h>
#include <events/SwitchScreenLayoutEvent.h>
#include <events/TransactionEvent.h>
#include <ovdoc/Document.h>
#include <ovdoc/Storage.h>
#include <registries/CommInfo.h>
#include <registries/CommInfoRegistry.h>

#include <QtTest>

#include <algorithm>
#include <functional>
#include <memory>
#include <random>
#include <thread>
#include <vector>

using App::Application;

namespace {

QString nameOf(const Doc::Document* document)
{
    return document ? document->filePath() : "null"_s;
}

/// A listener of every kind, which notes under its own name what it is told.
struct Listener : App::ActiveDocumentListener,
                  App::AppStartFinishListener,
                  App::CloseDocumentListener,
                  App::NewDocumentListener,
                  App::ObjectListListener,
                  App::PluginStateListener,
                  App::PropertyListener,
                  App::SelectionListener,
                  App::TransactionListener
{
    Listener(const char* name, QStringList& told) : _name(QLatin1String(name)), _told(told) {}

    void updateActiveDocumentListener(Doc::Document* document) override
    {
        note("active ", document);
    }
    void updateAppStartFinishListener() override { note("started"_s); }
    void updateCloseDocumentListener(Doc::Document* document) override { note("close ", document); }
    void updateNewDocumentListener(Doc::Document* document) override { note("new ", document); }
    void updateObjectListListener(Doc::Document* document) override { note("objects ", document); }
    void updatePluginStateListener(int state) override { note("state %1"_s.arg(state)); }
    void updatePropertyListener(Doc::Document* document, bool flag, int value) override
    {
        note("property %1 %2 %3"_s.arg(nameOf(document)).arg(flag).arg(value));
    }
    void updateSelectionListener(Doc::Document* document) override { note("selection ", document); }
    void updateTransactionListener(Doc::Document* document, Doc::Transaction* transaction) override
    {
        note("transaction %1 %2"_s.arg(nameOf(document), transaction->name()));
    }

    void note(const char* what, const Doc::Document* document)
    {
        note(QLatin1String(what) + nameOf(document));
    }
    void note(const QString& what) { _told.append(_name + ": "_s + what); }

    QString _name;
    QStringList& _told;
};

/// One kind of listener: its three operations, and what its listeners are told when the document
/// "given" is notified while "active" is active.
struct Kind
{
    std::function<void(Application&, Listener*)> add;
    std::function<void(Application&, Listener*)> remove;
    std::function<void(Application&, Doc::Document*)> notify;
};

/// Acts on the list that it is called from.
struct Actor : App::PluginStateListener
{
    void updatePluginStateListener(int) override { act(); }
    std::function<void()> act;
};

/// Keeps the events it receives.
struct Receiver : QObject
{
    bool event(QEvent* event) override
    {
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
        } else {
            return QObject::event(event);
        }
        thread = QThread::currentThread();
        return true;
    }
    /// Receives what is meant for another object.
    bool eventFilter(QObject*, QEvent* event) override
    {
        return event->type() >= QEvent::User && Receiver::event(event);
    }

    QStringList received;
    QThread* thread = nullptr;
};

} // namespace

Q_DECLARE_METATYPE(Kind)

class tst_listeners : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void kinds_data()
    {
        QTest::addColumn<Kind>("kind");
        QTest::addColumn<QString>("told");
        QTest::addColumn<QString>("toldWithoutActive");
        QTest::newRow("active document") << Kind{&Application::addActiveDocumentListener,
                                                 &Application::removeActiveDocumentListener,
                                                 &Application::notifyActiveDocumentListener}
                                         << "active given"
                                         << "active given";
        QTest::newRow("close document") << Kind{&Application::addCloseDocumentListener,
                                                &Application::removeCloseDocumentListener,
                                                &Application::notifyCloseDocumentListener}
                                        << "close given"
                                        << "close given";
        QTest::newRow("new document")
            << Kind{&Application::addNewDocumentListener, &Application::removeNewDocumentListener,
                    &Application::notifyNewDocumentListener}
            << "new given"
            << "new given";
        QTest::newRow("object list")
            << Kind{&Application::addObjectListListener, &Application::removeObjectListListener,
                    &Application::notifyObjectListListener}
            << "objects active"
            << "objects null";
        QTest::newRow("plug-in state")
            << Kind{&Application::addPluginStateChangeListener,
                    &Application::removePluginStateChangeListener,
                    [](Application& a, Doc::Document*) { a.notifyPluginStateChangeListener(-3); }}
            << "state -3"
            << "state -3";
        QTest::newRow("property") << Kind{&Application::addPropertyListener,
                                          &Application::removePropertyListener,
                                          [](Application& a, Doc::Document* d) {
                                              a.notifyPropertyListeners(d, true, 5);
                                          }}
                                  << "property given 1 5"
                                  << "property given 1 5";
        QTest::newRow("selection")
            << Kind{&Application::addSelectionListener, &Application::removeSelectionListener,
                    &Application::notifySelectionListeners}
            << "selection active"
            << "selection null";
        QTest::newRow("start finished")
            << Kind{&Application::addStartFinishListener, &Application::removeStartFinishListener,
                    [](Application& a, Doc::Document*) { a.notifyStartFinishListener(); }}
            << "started"
            << "started";
        QTest::newRow("transaction")
            << Kind{&Application::addTransactionListener, &Application::removeTransactionListener,
                    [](Application& a, Doc::Document* d) {
                        Doc::Transaction transaction("move"_s);
                        a.notifyTransactionListeners(d, &transaction);
                    }}
            << "transaction active move"
            << "transaction null move";
    }

    void kinds()
    {
        QFETCH(Kind, kind);
        QFETCH(QString, told);
        const Session session;
        Application& application = session.application();
        Doc::Document active(new Doc::Storage);
        active.setFilePath("active"_s);
        Doc::Document given(new Doc::Storage);
        given.setFilePath("given"_s);
        application.setActivateDocument(&active);

        QStringList notes;
        Listener a("A", notes);
        Listener b("B", notes);
        Listener c("C", notes);
        const auto order = [&] {
            notes.clear();
            kind.notify(application, &given);
            QString names;
            for (const QString& note : qAsConst(notes))
                names += note.endsWith(": "_s + told) ? note.left(1) : note;
            return names;
        };

        QCOMPARE(order(), QString());
        for (Listener* listener : {&a, &b, &a, static_cast<Listener*>(nullptr), &c, &b})
            kind.add(application, listener);
        QCOMPARE(order(), "ABC"_s);
        kind.remove(application, &b);
        kind.remove(application, &b);
        kind.remove(application, nullptr);
        QCOMPARE(order(), "AC"_s);
        kind.add(application, &b);
        QCOMPARE(order(), "ACB"_s);

        QVERIFY(application.closeDocument());
        notes.clear();
        kind.notify(application, &given);
        QFETCH(QString, toldWithoutActive);
        QCOMPARE(notes.value(2), "B: "_s + toldWithoutActive);
    }

    void walkThatChanges_data()
    {
        // What the listener before the colon does, once, when it is called: +X adds, -X removes,
        // and ~X removes from the list of another kind, where it is the first.
        QTest::addColumn<QString>("registered");
        QTest::addColumn<QString>("actions");
        QTest::addColumn<QString>("called");
        QTest::newRow("removes itself") << "ABC"
                                        << "A:-A"
                                        << "ABC";
        QTest::newRow("removes the next") << "ABC"
                                          << "A:-B"
                                          << "AC";
        QTest::newRow("removes the one before") << "ABC"
                                                << "B:-A"
                                                << "ABC";
        QTest::newRow("removes all") << "ABC"
                                     << "A:-A-B-C"
                                     << "A";
        QTest::newRow("last removes all") << "ABC"
                                          << "C:-A-B-C"
                                          << "ABC";
        QTest::newRow("adds one") << "AB"
                                  << "A:+C"
                                  << "ABC";
        QTest::newRow("last adds one") << "AB"
                                       << "B:+C"
                                       << "ABC";
        QTest::newRow("moves the next to the end") << "ABC"
                                                   << "A:-B+B"
                                                   << "ACB";
        QTest::newRow("moves itself to the end") << "ABC"
                                                 << "A:-A+A"
                                                 << "ABCA";
        QTest::newRow("the only one adds itself again") << "A"
                                                        << "A:-A+A"
                                                        << "AA";
        QTest::newRow("replaces itself") << "AB"
                                         << "A:-A+C"
                                         << "ABC";
        QTest::newRow("removes what it added") << "AB"
                                               << "A:+C-C"
                                               << "AB";
        QTest::newRow("changes another list") << "ABC"
                                              << "B:~A"
                                              << "ABC";
    }

    void walkThatChanges()
    {
        QFETCH(QString, registered);
        QFETCH(QString, actions);
        const Session session;
        Application& application = session.application();
        Actor actors[3];
        QStringList notes;
        Listener other("other", notes);
        application.addSelectionListener(&other);
        const auto actor = [&actors](QChar name) { return &actors[name.unicode() - 'A']; };

        QString called;
        for (const QChar name : "ABC"_s)
            actor(name)->act = [&called, name] { called += name; };
        actor(actions.at(0))->act = [&, once = true]() mutable {
            called += actions.at(0);
            for (int i = 2; once && i < actions.size(); i += 2) {
                if (actions.at(i) == u'+')
                    application.addPluginStateChangeListener(actor(actions.at(i + 1)));
                else if (actions.at(i) == u'-')
                    application.removePluginStateChangeListener(actor(actions.at(i + 1)));
                else
                    application.removeSelectionListener(&other);
            }
            once = false;
        };
        for (const QChar name : registered)
            application.addPluginStateChangeListener(actor(name));
        application.notifyPluginStateChangeListener(0);
        QTEST(called, "called");
    }

    void randomChanges()
    {
        // The model: registrations with rising numbers. The next one that a walk calls is the one
        // with the smallest number above that of the last one it called.
        struct Registration
        {
            Actor* actor;
            int number;
        };
        std::vector<Registration> model;
        std::vector<int> walks; // the number last called, innermost walk last
        int lastNumber = 0;
        int calls = 0;
        int budget = 0;
        std::mt19937 random(20210);
        const auto below = [&random](unsigned end) {
            return static_cast<unsigned>(random() % end);
        };

        const Session session;
        Application& application = session.application();
        std::vector<Actor> actors(20);
        const auto nextOf = [&model](int number) {
            return std::find_if(model.begin(), model.end(),
                                [number](const Registration& registration) {
                                    return registration.number > number;
                                });
        };
        const auto add = [&](Actor* actor) {
            application.addPluginStateChangeListener(actor);
            if (std::none_of(model.begin(), model.end(),
                             [actor](const Registration& r) { return r.actor == actor; })) {
                model.push_back({actor, ++lastNumber});
            }
        };
        const auto remove = [&](Actor* actor) {
            application.removePluginStateChangeListener(actor);
            model.erase(std::remove_if(model.begin(), model.end(),
                                       [actor](const Registration& r) { return r.actor == actor; }),
                        model.end());
        };
        const auto notify = [&] {
            walks.push_back(0);
            application.notifyPluginStateChangeListener(0);
            QVERIFY2(nextOf(walks.back()) == model.end(), "a walk ended too early");
            walks.pop_back();
        };
        const auto change = [&] {
            for (unsigned left = below(4); left > 0 && budget > 0; --left, --budget) {
                Actor* const actor = &actors[below(20)];
                const unsigned action = below(9);
                if (action < 4)
                    add(actor);
                else if (action < 8)
                    remove(actor);
                else if (walks.size() < 4)
                    notify();
            }
        };
        for (Actor& actor : actors) {
            actor.act = [&] {
                ++calls;
                const auto expected = nextOf(walks.back());
                QVERIFY2(expected != model.end(), "called after the end");
                QCOMPARE(&actor, expected->actor);
                walks.back() = expected->number;
                change();
            };
        }

        for (int round = 0; round < 5000; ++round) {
            budget = 60;
            change();
            notify();
            if (QTest::currentTestFailed())
                return;
        }
        QVERIFY(calls > 50000);
    }

    void activeDocumentChangesMeanwhile()
    {
        struct Closer : App::SelectionListener
        {
            void updateSelectionListener(Doc::Document*) override
            {
                Application::instance().setActivateDocument(nullptr);
            }
        };
        const Session session;
        QStringList notes;
        Closer closer;
        Listener after("after", notes);
        session.application().addSelectionListener(&closer);
        session.application().addSelectionListener(&after);
        session.application().setActivateDocument(new Doc::Document(new Doc::Storage));
        session.application().notifySelectionListeners(nullptr);
        QCOMPARE(notes, QStringList({"after: selection null"_s}));
    }

    void walksOnTwoThreads()
    {
        constexpr int rounds = 2000;
        const Session session;
        Application& application = session.application();
        int channelStarts = 0;
        int notifications = 0;
        struct Channel : App::CommInfo
        {
            explicit Channel(int& starts) : _starts(starts) {}
            void start() override
            {
                App::CommInfoRegistry::instance()->unregisterCommInfo(this);
                if (++_starts % 3 != 0)
                    App::CommInfoRegistry::instance()->registerCommInfo(this);
            }
            int& _starts;
        } channel(channelStarts);
        Actor actor;
        actor.act = [&] {
            ++notifications;
            application.removePluginStateChangeListener(&actor);
        };

        std::thread other([&channel] {
            for (int i = 0; i < rounds; ++i) {
                App::CommInfoRegistry::instance()->registerCommInfo(&channel);
                App::CommInfoRegistry::instance()->start();
            }
        });
        for (int i = 0; i < rounds; ++i) {
            application.addPluginStateChangeListener(&actor);
            application.notifyPluginStateChangeListener(0);
        }
        other.join();
        QCOMPARE(channelStarts, 3 * rounds);
        QCOMPARE(notifications, rounds);
    }

    void posting_data()
    {
        QTest::addColumn<bool>("toReceiver");
        QTest::newRow("to a receiver") << true;
        QTest::newRow("to the application") << false;
    }

    void posting()
    {
        QFETCH(bool, toReceiver);
        const Session session;
        Receiver receiver;
        if (!toReceiver)
            QCoreApplication::instance()->installEventFilter(&receiver);
        QObject* const target = toReceiver ? &receiver : nullptr;
        QObject* const posted = target ? target : QCoreApplication::instance();

        // Priorities above and below show that ours is 0.
        QCoreApplication::postEvent(posted, new Core::SwitchScreenLayoutEvent(-1), -1);
        Doc::Transaction transaction("move"_s);
        session.application().postTransactionEvent(transaction, true, -7, target);
        transaction.setName("changed after posting"_s);
        session.application().postSelectionChangedEvent(target);
        session.application().postPluginStateChangedEvent(target);
        QCoreApplication::postEvent(posted, new Core::SwitchScreenLayoutEvent(1), 1);
        QVERIFY(receiver.received.isEmpty());

        QCoreApplication::sendPostedEvents(posted);
        QCOMPARE(receiver.received, QStringList({"layout 1"_s, "transaction move 1 -7"_s,
                                                 "selection"_s, "layout -1"_s}));
    }

    void postingFromThreads()
    {
        constexpr int perThread = 1000;
        const Session session;
        Receiver receiver;
        const auto post = [&] {
            for (int i = 0; i < perThread; ++i) {
                Doc::Transaction transaction("cut"_s);
                session.application().postTransactionEvent(transaction, false, i, &receiver);
                session.application().postSelectionChangedEvent(&receiver);
            }
        };
        std::thread first(post);
        std::thread second(post);
        first.join();
        second.join();
        QVERIFY(receiver.received.isEmpty());
        QCoreApplication::sendPostedEvents(&receiver);
        QCOMPARE(receiver.received.count("selection"_s), 2 * perThread);
        QCOMPARE(receiver.received.size(), 4 * perThread);
        QCOMPARE(receiver.thread, QCoreApplication::instance()->thread());
    }
};

QTEST_GUILESS_MAIN(tst_listeners)
#include "tst_listeners.moc"
