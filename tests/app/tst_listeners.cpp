#include <support/Listener.h>
#include <support/Literals.h>
#include <support/Session.h>

#include <events/SelectionChangeEvent.h>
#include <events/SwitchScreenLayoutEvent.h>
#include <events/TransactionEvent.h>
#include <ovdoc/Storage.h>

#include <QtTest>

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <thread>
#include <utility>

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

/// Calls a function with its name. It is not used after the call, which may destroy it.
struct Actor : App::SelectionListener
{
    Actor(QChar name, const std::function<void(QChar)>& onCall) : _name(name), _onCall(onCall) {}
    void updateSelectionListener(Doc::Document*) override { _onCall(_name); }

private:
    const QChar _name;
    const std::function<void(QChar)>& _onCall;
};

/// Notifies the listeners A, B, C and D, and returns the names of those called. A word of `script`
/// consists of a name and what the listener does when it is called first: add (+), remove (-) or
/// destroy (~, there is a new one at the same address afterwards) a listener, notify (!), throw
/// (x).
QString callsWith(const QString& script)
{
    const Session session;
    Application& application = session.application();
    QString calls;
    QStringList actions = script.split(u' ');
    std::map<QChar, std::optional<Actor>> actors;
    const std::function<void(QChar)> onCall = [&](QChar name) {
        calls += name;
        const QStringList own = actions.filter(QRegularExpression("^"_s + name));
        for (const QString& word : own)
            actions.removeOne(word);
        const QString text = own.join(QString()).mid(1);
        for (int i = 0; i < text.size(); ++i) {
            const QChar action = text.at(i);
            if (action == u'x')
                throw 1;
            if (action == u'!') {
                application.notifySelectionListeners(nullptr);
                continue;
            }
            const QChar target = text.at(++i);
            if (action == u'-')
                application.removeSelectionListener(&*actors.at(target));
            else if (action == u'~')
                actors.at(target).emplace(target, onCall);
            else
                application.addSelectionListener(&*actors.at(target));
        }
    };
    for (const QChar name : "ABCDEFGHIJKLMNOPQRSTUVWXYZ"_s)
        actors[name].emplace(name, onCall);
    for (const QChar name : "ABCD"_s)
        application.addSelectionListener(&*actors.at(name));
    const int count = application.listenerCount();
    try {
        application.notifySelectionListeners(nullptr);
    } catch (int) {
        calls += u'x';
        application.notifySelectionListeners(nullptr);
    }
    return count == 4 ? calls : "wrong count"_s;
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

    void changesDuringNotifications()
    {
        const std::pair<const char*, const char*> rows[] = {
            {"B-A", "ABCD"},
            {"A-A-B-C-D", "A"},
            {"A+E", "ABCDE"},
            {"A+E+F+G+H+I+J+K+L+M+N+O+P+Q+R+S+T+U+V+W+X+Y+Z", "ABCDEFGHIJKLMNOPQRSTUVWXYZ"},
            // A listener that was called is not called again; one that was not is called last.
            {"A-A+A", "ABCD"},
            {"D-A+A-D+D+E", "ABCDE"},
            {"A-C+C", "ABDC"},
            {"A-A+A+E-B", "ACDE"},
            // Destroyed listeners, and new ones at the same address.
            {"A~A B~B", "ABCD"},
            {"A~B D~C", "ACD"},
            {"A~A+A", "ABCDA"},
            {"B-A~A+A", "ABCDA"},
            // Nested iterations.
            {"B!", "ABABCDCD"},
            {"B! C-D", "ABABCC"},
            {"B!-A+A C-B+B-D", "ABABCC"},
            {"C!! B-A~A+A", "ABCBCDABCDADA"},
            {"A! D~D+D", "AABCDDBCD"},
            // An exception ends the iterations that it passes.
            {"Bx C-A", "ABxABCD"},
            {"B! D-A+Ax", "ABABCDxBCDA"},
        };
        for (const auto& [script, calls] : rows)
            QCOMPARE(QLatin1String(script) + ": "_s + callsWith(QLatin1String(script)),
                     QLatin1String(script) + ": "_s + QLatin1String(calls));
    }

    void destroyedListenersLeaveTheirLists()
    {
        const std::unique_ptr<Listener> longest = std::make_unique<Listener>([](const QString&) {});
        {
            const Session session;
            Application& application = session.application();
            QStringList calls;
            {
                Listener destroyed([&calls](const QString& call) { calls.append(call); });
                add(application, &destroyed);
                QCOMPARE(application.listenerCount(), 9);
            }
            QCOMPARE(application.listenerCount(), 0);
            notify(application, nullptr);
            QCOMPARE(calls, QStringList());
            add(application, longest.get());
        }
    }

    void activeDocumentIsReadForEachListener()
    {
        const Session session;
        QStringList calls;
        const std::function<void(QChar)> close = [](QChar) {
            Application::instance().setActivateDocument(nullptr);
        };
        Actor closer(u'A', close);
        Listener after([&calls](const QString& call) { calls.append(call); });
        session.application().addSelectionListener(&closer);
        session.application().addSelectionListener(&after);
        session.application().setActivateDocument(new Doc::Document(new Doc::Storage));
        session.application().notifySelectionListeners(nullptr);
        QCOMPARE(calls, QStringList({"selection none"_s}));
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
