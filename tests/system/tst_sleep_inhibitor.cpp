#include <support/Session.h>

#include <system/ExecutionState.h>

#include <QtDBus>
#include <QtTest>

#include <csignal>
#include <cstdio>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

using System::setThreadExecutionState;

namespace {

const quint32 asked = 0x80000041u;
const quint32 withdrawn = 0x80000000u;

const char neededPackages[] = "needs dbus-daemon and python3-dbusmock: scripts/setup test";

/// A process that ends with the test, however that ends.
struct Helper : QProcess
{
    ~Helper() override
    {
        kill();
        waitForFinished();
    }

    void run(const QStringList& command)
    {
        start("setpriv"_s, words("--pdeathsig KILL --") + command);
    }
};

/// A bus of the test's own.
class Bus
{
public:
    bool start()
    {
        writeFile(_directory.filePath("bus.conf"_s),
                  "<busconfig><listen>unix:dir=" + QFile::encodeName(_directory.path()) +
                      "</listen><policy context='default'><allow user='*'/><allow own='*'/>"
                      "<allow send_destination='*'/><allow receive_sender='*'/>"
                      "<allow receive_type='method_call'/></policy></busconfig>");
        _daemon.run(words("dbus-daemon --nofork --print-address --config-file") +
                    QStringList(_directory.filePath("bus.conf"_s)));
        if (!_daemon.waitForReadyRead())
            return false;
        address = _daemon.readLine().trimmed();
        return true;
    }

    QByteArray address;

private:
    const QTemporaryDir _directory;
    Helper _daemon;
};

/// A socket that is listened to, with room for one connection, and nothing more.
class DeafBus
{
public:
    DeafBus()
    {
        sockaddr_un address = {};
        address.sun_family = AF_UNIX;
        qstrcpy(address.sun_path, path.constData());
        if (bind(_socket, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0 ||
            listen(_socket, 0) != 0)
            qFatal("cannot listen");
    }
    DeafBus(const DeafBus&) = delete;
    DeafBus& operator=(const DeafBus&) = delete;
    ~DeafBus() { close(_socket); }

private:
    const QTemporaryDir _directory;
    const int _socket = socket(AF_UNIX, SOCK_STREAM, 0);

public:
    const QByteArray path = QFile::encodeName(_directory.filePath("bus"_s));
};

} // namespace

class tst_sleep_inhibitor : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY2(_bus.start() && _busWithoutLogind.start(), neededPackages);
        qputenv("DBUS_SYSTEM_BUS_ADDRESS", _bus.address);
        _logind.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        _logind.run(words("/usr/bin/python3 -m dbusmock --system --template") +
                    QStringList(QStringLiteral(LOGIND_TEMPLATE)));
        const QDBusConnection bus =
            QDBusConnection::connectToBus(QString::fromLatin1(_bus.address), "test"_s);
        QVERIFY(bus.isConnected());
        _manager = bus;
        QTRY_VERIFY2_WITH_TIMEOUT(bus.interface()->isServiceRegistered("org.freedesktop.login1"_s),
                                  neededPackages, 30000);
    }

    void init() { qputenv("DBUS_SYSTEM_BUS_ADDRESS", _bus.address); }

    void policies_data()
    {
        QTest::addColumn<QStringList>("refused");
        QTest::addColumn<QString>("what");
        QTest::newRow("none") << QStringList() << "sleep:idle"_s;
        QTest::newRow("sleep") << words("sleep") << "idle"_s;
        QTest::newRow("both") << words("sleep idle") << QString();
    }

    void policies()
    {
        QFETCH(const QStringList, refused);
        QFETCH(const QString, what);
        ask("org.freedesktop.DBus.Mock"_s, "Refuse"_s, refused);
        const auto allow =
            qScopeGuard([this] { ask("org.freedesktop.DBus.Mock"_s, "Refuse"_s, QStringList()); });
        for (int i = 0; i < 2; ++i) {
            Helper child;
            {
                const Session session;
                if (what.isEmpty())
                    QTest::qWait(200);
                const QString held =
                    what +
                    " by tst_sleep_inhibitor: Sleep would stop the laser in the middle of a job, block"_s;
                QVERIFY(becomes(what.isEmpty() ? QString() : held));
                // Whatever the program starts may live longer than it does.
                child.run({"cat"_s});
                QVERIFY(child.waitForStarted());
            }
            QVERIFY(becomes(QString()));
        }
    }

    void threads()
    {
        std::thread([this] {
            QCOMPARE(setThreadExecutionState(0x00000001u), withdrawn);
            QCOMPARE(setThreadExecutionState(asked), 0x00000001u);
            QCOMPARE(setThreadExecutionState(0x00000001u), asked);
            QVERIFY(becomesHeld());
            QCOMPARE(setThreadExecutionState(asked), 0x00000001u);
        }).join();
        QVERIFY(becomes(QString()));
        QCOMPARE(setThreadExecutionState(asked), withdrawn);
        std::thread([] { setThreadExecutionState(asked); }).join();
        QTest::qWait(100);
        QVERIFY(becomesHeld());
        QCOMPARE(setThreadExecutionState(withdrawn), asked);
        QVERIFY(becomes(QString()));
    }

    void endOfTheProcess_data()
    {
        QTest::addColumn<QString>("way");
        for (const QString& way : words("killed return exit"))
            QTest::newRow(qPrintable(way)) << way;
    }

    void endOfTheProcess()
    {
        QFETCH(const QString, way);
        Helper child;
        child.run({QCoreApplication::applicationFilePath(), "--end"_s, way});
        QVERIFY(becomesHeld());
        child.write("fork");
        QVERIFY(child.waitForReadyRead());
        QTest::qWait(100);
        QVERIFY(becomesHeld());
        if (way == "killed"_s)
            child.kill();
        else
            child.closeWriteChannel();
        QVERIFY(child.waitForFinished());
        QCOMPARE(child.exitStatus(),
                 way == "killed"_s ? QProcess::CrashExit : QProcess::NormalExit);
        QCOMPARE(child.readAllStandardError(), QByteArray());
        QVERIFY(becomes(QString()));
    }

    void noAnswer_data()
    {
        QTest::addColumn<QByteArray>("address");
        QTest::newRow("no bus") << QByteArray("unix:path=/nowhere");
        QTest::newRow("not a local bus") << QByteArray("tcp:host=127.0.0.1,port=1");
        QTest::newRow("no address") << QByteArray("nowhere");
        QTest::newRow("deaf bus") << "unix:path=" + _deafBus.path;
        QTest::newRow("bus without logind") << _busWithoutLogind.address;
        QTest::newRow("deaf logind") << _bus.address;
    }

    void noAnswer()
    {
        QFETCH(const QByteArray, address);
        qputenv("DBUS_SYSTEM_BUS_ADDRESS", address);
        const auto logind = pid_t(_logind.processId());
        kill(logind, SIGSTOP);
        const auto goOn = qScopeGuard([=] { kill(logind, SIGCONT); });
        static int printed;
        printed = 0;
        const auto print = qInstallMessageHandler(
            [](QtMsgType, const QMessageLogContext&, const QString&) { ++printed; });
        const auto printAgain = qScopeGuard([=] { qInstallMessageHandler(print); });

        const QTemporaryDir directory;
        qint64 smallest = std::numeric_limits<qint64>::max();
        for (unsigned i = 0; i < 20; ++i) {
            Core::Settings::instance().setApplicationDirPath(directory.path());
            QElapsedTimer timer;
            timer.start();
            App::Application::init();
            // Some answers come in between, and some too late.
            const qint64 started = timer.nsecsElapsed();
            QThread::msleep(i);
            timer.start();
            App::Application::destruct();
            smallest = qMin(smallest, started + timer.nsecsElapsed());
        }
        QCOMPARE(printed, 0);
        QVERIFY2(smallest < 5000000, qPrintable(QString::number(smallest)));
        kill(logind, SIGCONT);
        QVERIFY(becomes(QString()));
    }

private:
    QDBusMessage ask(const QString& interface, const QString& method,
                     const QVariant& argument = QVariant()) const
    {
        QDBusMessage call = QDBusMessage::createMethodCall(
            "org.freedesktop.login1"_s, "/org/freedesktop/login1"_s, interface, method);
        if (argument.isValid())
            call << argument;
        return _manager.call(call);
    }

    QString inhibitors() const
    {
        const QDBusMessage reply = ask("org.freedesktop.login1.Manager"_s, "ListInhibitors"_s);
        if (reply.arguments().isEmpty())
            return reply.errorMessage();
        const auto list = reply.arguments().constFirst().value<QDBusArgument>();
        QStringList result;
        list.beginArray();
        while (!list.atEnd()) {
            QString what, who, why, mode;
            list.beginStructure();
            list >> what >> who >> why >> mode;
            uint ignored = 0;
            list >> ignored >> ignored;
            list.endStructure();
            result.append("%1 by %2: %3, %4"_s.arg(what, who, why, mode));
        }
        list.endArray();
        return result.join(u'\n');
    }

    /// Waits, without an event loop, for logind to hold these inhibitors.
    bool becomes(const QString& expected) const
    {
        return waitFor([&](const QString& held) { return held == expected; });
    }

    bool becomesHeld() const
    {
        return waitFor([](const QString& held) { return held.startsWith("sleep:idle"_s); });
    }

    template <typename Condition>
    bool waitFor(Condition condition) const
    {
        QElapsedTimer timer;
        timer.start();
        while (!condition(inhibitors())) {
            if (timer.hasExpired(10000)) {
                qWarning("%s", qPrintable(inhibitors()));
                return false;
            }
            QTest::qSleep(20);
        }
        return true;
    }

    Bus _bus;
    Bus _busWithoutLogind;
    const DeafBus _deafBus;
    Helper _logind;
    QDBusConnection _manager = QDBusConnection("none"_s);
};

/// Asks for the system to stay awake, and ends without withdrawing it when its input does. At input
/// it forks: what the child withdraws is its own.
int end(const QByteArray& way)
{
    setThreadExecutionState(asked);
    char input[9];
    while (read(STDIN_FILENO, input, sizeof input) > 0) {
        if (fork() == 0) {
            setThreadExecutionState(withdrawn);
            _exit(0);
        }
        wait(nullptr);
        std::putchar('.');
        std::fflush(stdout);
    }
    if (way == "exit")
        std::thread([] { std::exit(0); }).join();
    return 0;
}

int main(int argc, char** argv)
{
    if (argc == 3)
        return end(argv[2]);
    QCoreApplication application(argc, argv);
    tst_sleep_inhibitor test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_sleep_inhibitor.moc"
