#include <support/Session.h>
#include <support/Tools.h>

#include <system/ExecutionState.h>

#include <QtTest>

#include <csignal>
#include <cstdio>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <systemd/sd-bus.h>
#include <thread>
#include <unistd.h>

using System::setThreadExecutionState;

// logind is slow on a busy machine.
#define TRY_VERIFY(condition) QTRY_VERIFY2_WITH_TIMEOUT(condition, qPrintable(inhibitors()), 10000)

namespace {

const quint32 requested = 0x80000041u;
const quint32 withdrawn = 0x80000000u;

const char logindName[] = "org.freedesktop.login1";
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

/// A private bus.
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

/// A socket that accepts no connection, except for a greeting.
class MuteBus
{
public:
    explicit MuteBus(int backlog)
    {
        sockaddr_un name = {};
        name.sun_family = AF_UNIX;
        qstrcpy(name.sun_path, QFile::encodeName(_directory.filePath("bus"_s)).constData());
        address.append(name.sun_path);
        if (bind(_socket, reinterpret_cast<sockaddr*>(&name), sizeof name) != 0 ||
            listen(_socket, backlog) != 0)
            qFatal("cannot listen");
    }
    Q_DISABLE_COPY(MuteBus)
    ~MuteBus() { close(_socket); }

    /// Accepts and authenticates one client, and then no longer answers it.
    void greet() const
    {
        const int client = accept(_socket, nullptr, nullptr);
        const QByteArray greeting = "OK " + QByteArray(32, '0') + "\r\nAGREE_UNIX_FD\r\n";
        if (client >= 0)
            write(client, greeting.constData(), size_t(greeting.size()));
    }

    QByteArray address = "unix:path=";

private:
    const QTemporaryDir _directory;
    const int _socket = socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
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
        sd_bus* bus = nullptr;
        QVERIFY(sd_bus_open_system(&bus) >= 0);
        _client.reset(bus);
        QTRY_VERIFY2_WITH_TIMEOUT(inhibitors().isEmpty(), neededPackages, 30000);
    }

    void init() { qputenv("DBUS_SYSTEM_BUS_ADDRESS", _bus.address); }

    void policies_data()
    {
        QTest::addColumn<QByteArray>("refused");
        QTest::addColumn<QString>("what");
        QTest::newRow("none") << QByteArray() << "sleep:idle"_s;
        QTest::newRow("sleep") << QByteArray("sleep") << "idle"_s;
        QTest::newRow("both") << QByteArray("sleep idle") << QString();
    }

    void policies()
    {
        QFETCH(const QByteArray, refused);
        QFETCH(const QString, what);
        refuse(refused);
        const auto allow = qScopeGuard([this] { refuse({}); });
        for (int i = 0; i < 2; ++i) {
            Helper child;
            {
                const Session session;
                if (what.isEmpty())
                    QTest::qWait(200);
                const QString held =
                    what +
                    " by tst_sleep_inhibitor: Sleep would stop the laser in the middle of a job, block"_s;
                TRY_VERIFY(inhibitors() == (what.isEmpty() ? QString() : held));
                // Processes that the program starts may outlive it.
                child.run({"cat"_s});
                QVERIFY(child.waitForStarted());
            }
            TRY_VERIFY(isWithdrawn());
        }
    }

    void threads()
    {
        const auto runInThread = [](auto&& function) {
            const std::unique_ptr<QThread> thread(QThread::create(function));
            thread->start();
            QTRY_VERIFY(thread->isFinished());
        };
        runInThread([this] {
            QCOMPARE(setThreadExecutionState(0x00000001u), withdrawn);
            QCOMPARE(setThreadExecutionState(requested), 0x00000001u);
            QCOMPARE(setThreadExecutionState(0x00000001u), requested);
            TRY_VERIFY(isHeld());
            QCOMPARE(setThreadExecutionState(0x80000040u), 0x00000001u);
            TRY_VERIFY(isWithdrawn());
            QCOMPARE(setThreadExecutionState(requested), 0x80000040u);
            TRY_VERIFY(isHeld());
        });
        TRY_VERIFY(isWithdrawn());
        QCOMPARE(setThreadExecutionState(requested), withdrawn);
        runInThread([] { setThreadExecutionState(requested); });
        runInThread([] { setThreadExecutionState(0x80000040u); });
        // Without an event loop there is no request.
        std::thread([] { setThreadExecutionState(requested); }).join();
        QTest::qWait(100);
        TRY_VERIFY(isHeld());
        QCOMPARE(setThreadExecutionState(withdrawn), requested);
        TRY_VERIFY(isWithdrawn());
    }

    void secondAddress()
    {
        qputenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nowhere;" + _bus.address);
        const Session session;
        TRY_VERIFY(isHeld());
    }

    void endOfTheProcess_data()
    {
        QTest::addColumn<QString>("way");
        for (const QString& way : words("killed return exit thread static"))
            QTest::newRow(qPrintable(way)) << way;
    }

    void endOfTheProcess()
    {
        QFETCH(const QString, way);
        Helper child;
        child.run({QCoreApplication::applicationFilePath(), "--end"_s, way});
        TRY_VERIFY(isHeld());
        child.write("fork");
        QVERIFY(child.waitForReadyRead());
        QTest::qWait(100);
        TRY_VERIFY(isHeld());
        if (way == "killed"_s)
            child.kill();
        else
            child.closeWriteChannel();
        QVERIFY(child.waitForFinished());
        QCOMPARE(child.exitStatus(),
                 way == "killed"_s ? QProcess::CrashExit : QProcess::NormalExit);
        QCOMPARE(child.readAllStandardError(), QByteArray());
        TRY_VERIFY(isWithdrawn());
    }

    void exitOnAnotherThread()
    {
        for (int delay = 0; delay < 20; ++delay) {
            Helper child;
            child.run(
                {QCoreApplication::applicationFilePath(), "--exit"_s, QString::number(delay)});
            QVERIFY(child.waitForFinished());
            QCOMPARE(child.exitStatus(), QProcess::NormalExit);
            QCOMPARE(Tools::errorsAtExit(child), QByteArray());
        }
        TRY_VERIFY(isWithdrawn());
    }

    void noAnswer_data()
    {
        QTest::addColumn<QByteArray>("address");
        QTest::newRow("no bus") << QByteArray("unix:path=/nowhere");
        QTest::newRow("mute bus") << _muteBus.address;
        QTest::newRow("full backlog") << _fullBus.address;
        QTest::newRow("greeting only") << _greetingBus.address;
        QTest::newRow("bus without logind") << _busWithoutLogind.address;
        QTest::newRow("mute logind") << _bus.address;
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
        for (int i = 0; i < 20; ++i) {
            Core::Settings::instance().setApplicationDirPath(directory.path());
            QElapsedTimer timer;
            timer.start();
            App::Application::init();
            QCoreApplication::processEvents();
            // Some answers arrive in between, and some too late.
            const qint64 started = timer.nsecsElapsed();
            _greetingBus.greet();
            QTest::qWait(i);
            timer.start();
            App::Application::destruct();
            smallest = qMin(smallest, started + timer.nsecsElapsed());
        }
        QCOMPARE(printed, 0);
        QVERIFY2(smallest < 5000000, qPrintable(QString::number(smallest)));
        kill(logind, SIGCONT);
        TRY_VERIFY(isWithdrawn());
    }

private:
    void refuse(const QByteArray& whats) const
    {
        QVERIFY(sd_bus_call_method(_client.get(), logindName, "/org/freedesktop/login1",
                                   "org.freedesktop.DBus.Mock", "Refuse", nullptr, nullptr, "s",
                                   whats.constData()) >= 0);
    }

    QString inhibitors() const
    {
        sd_bus_message* reply = nullptr;
        if (sd_bus_call_method(_client.get(), logindName, "/org/freedesktop/login1",
                               "org.freedesktop.login1.Manager", "ListInhibitors", nullptr, &reply,
                               "") < 0)
            return "no answer"_s;
        const std::unique_ptr<sd_bus_message, sd_bus_message* (*)(sd_bus_message*)> holder(
            reply, sd_bus_message_unref);
        QStringList result;
        sd_bus_message_enter_container(reply, 'a', "(ssssuu)");
        const char *what, *who, *why, *mode;
        while (sd_bus_message_read(reply, "(ssssuu)", &what, &who, &why, &mode, nullptr, nullptr) >
               0)
            result.append(QString::asprintf("%s by %s: %s, %s", what, who, why, mode));
        return result.join(u'\n');
    }

    bool isHeld() const { return inhibitors().startsWith("sleep:idle"_s); }
    bool isWithdrawn() const { return inhibitors().isEmpty(); }

    Bus _bus;
    Bus _busWithoutLogind;
    const MuteBus _muteBus{100};
    const MuteBus _fullBus{0};
    const MuteBus _greetingBus{100};
    Helper _logind;
    std::unique_ptr<sd_bus, sd_bus* (*)(sd_bus*)> _client{nullptr, sd_bus_close_unref};
};

/// Requests the system to stay awake, and ends in the given way when standard input ends, without
/// withdrawing the request. At input, forks a child that withdraws its own and calls `exit`.
int requestUntilInputEnds(int argc, char** argv)
{
    // Before there is a QCoreApplication.
    setThreadExecutionState(requested);
    QCoreApplication application(argc, argv);
    const QByteArray way = argv[2];
    QSocketNotifier notifier(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&notifier, &QSocketNotifier::activated, &notifier, [&] {
        char input[9];
        if (read(STDIN_FILENO, input, sizeof input) <= 0) {
            if (way == "exit" || way == "static")
                std::exit(0);
            if (way == "thread")
                std::thread([] { std::exit(0); }).join();
            QCoreApplication::quit();
            return;
        }
        if (fork() == 0) {
            if (way == "return")
                setThreadExecutionState(withdrawn);
            std::exit(0);
        }
        wait(nullptr);
        std::putchar('.');
        std::fflush(stdout);
    });
    if (way == "static")
        std::atexit([] { setThreadExecutionState(withdrawn); });
    return QCoreApplication::exec();
}

int main(int argc, char** argv)
{
    if (argc == 3 && qstrcmp(argv[1], "--end") == 0)
        return requestUntilInputEnds(argc, argv);
    QCoreApplication application(argc, argv);
    if (argc == 3 && qstrcmp(argv[1], "--exit") == 0) {
        setThreadExecutionState(requested);
        std::thread([delay = 250 * QByteArray(argv[2]).toUInt()] {
            QThread::usleep(delay);
            std::exit(0);
        }).detach();
        return QCoreApplication::exec();
    }
    tst_sleep_inhibitor test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_sleep_inhibitor.moc"
