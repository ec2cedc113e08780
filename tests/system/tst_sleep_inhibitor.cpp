#include <support/Session.h>

#include <system/ExecutionState.h>

#include <QtTest>

#include <csignal>
#include <cstdio>
#include <sys/wait.h>
#include <systemd/sd-bus.h>
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

} // namespace

class tst_sleep_inhibitor : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        const QString configuration = _directory.filePath("bus.conf"_s);
        writeFile(configuration,
                  "<busconfig><listen>unix:dir=" + QFile::encodeName(_directory.path()) +
                      "</listen><policy context='default'><allow user='*'/><allow own='*'/>"
                      "<allow send_destination='*'/><allow receive_sender='*'/>"
                      "<allow receive_type='method_call'/></policy></busconfig>");
        _daemon.run(words("dbus-daemon --nofork --print-address --config-file") +
                    QStringList(configuration));
        QVERIFY2(_daemon.waitForReadyRead(), neededPackages);
        qputenv("DBUS_SYSTEM_BUS_ADDRESS", _daemon.readLine().trimmed());
        _logind.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        _logind.run(words("/usr/bin/python3 -m dbusmock --system --template") +
                    QStringList(QStringLiteral(LOGIND_TEMPLATE)));
        sd_bus* bus = nullptr;
        QVERIFY(sd_bus_open_system(&bus) >= 0);
        _client.reset(bus);
        QTRY_VERIFY2_WITH_TIMEOUT(inhibitors().isEmpty(), neededPackages, 30000);
    }

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
        const QString held =
            what +
            " by tst_sleep_inhibitor: Sleep would stop the laser in the middle of a job, block"_s;
        refuse(refused);
        const auto allow = qScopeGuard([this] { refuse({}); });
        for (int i = 0; i < 2; ++i) {
            Helper child;
            {
                const Session session;
                if (what.isEmpty())
                    QTest::qWait(200);
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
            QCOMPARE(setThreadExecutionState(0x00000040u), requested);
            TRY_VERIFY(isHeld());
            QCOMPARE(setThreadExecutionState(0x80000040u), 0x00000040u);
            TRY_VERIFY(isWithdrawn());
            setThreadExecutionState(requested);
            TRY_VERIFY(isHeld());
        });
        TRY_VERIFY(isWithdrawn());
        QCOMPARE(setThreadExecutionState(requested), withdrawn);
        runInThread([] { setThreadExecutionState(requested); });
        runInThread([] { setThreadExecutionState(withdrawn); });
        TRY_VERIFY(isHeld());
        setThreadExecutionState(withdrawn);
        TRY_VERIFY(isWithdrawn());
    }

    void forkAndExit()
    {
        Helper child;
        child.run({QCoreApplication::applicationFilePath(), "--fork"_s});
        TRY_VERIFY(isHeld());
        child.write("fork");
        QVERIFY(child.waitForReadyRead());
        QTest::qWait(100);
        TRY_VERIFY(isHeld());
        child.closeWriteChannel();
        QVERIFY(child.waitForFinished());
        QCOMPARE(child.exitStatus(), QProcess::NormalExit);
        QCOMPARE(child.readAllStandardError(), QByteArray());
        TRY_VERIFY(isWithdrawn());
    }

    void muteBus()
    {
        const auto daemon = pid_t(_daemon.processId());
        kill(daemon, SIGSTOP);
        const auto goOn = qScopeGuard([=] { kill(daemon, SIGCONT); });
        const QTemporaryDir directory;
        qint64 fastest = std::numeric_limits<qint64>::max();
        for (int i = 0; i < 20; ++i) {
            Core::Settings::instance().setApplicationDirPath(directory.path());
            QElapsedTimer timer;
            timer.start();
            App::Application::init();
            QCoreApplication::processEvents();
            App::Application::destruct();
            fastest = qMin(fastest, timer.nsecsElapsed());
        }
        QVERIFY2(fastest < 5000000, qPrintable(QString::number(fastest)));
        kill(daemon, SIGCONT);
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

    const QTemporaryDir _directory;
    Helper _daemon;
    Helper _logind;
    std::unique_ptr<sd_bus, sd_bus* (*)(sd_bus*)> _client{nullptr, sd_bus_close_unref};
};

/// Requests the system to stay awake. At input, forks a child that withdraws its own request and
/// exits. At the end of input, exits, and withdraws the request only then.
int forkAtInput(int argc, char** argv)
{
    // Before there is a QCoreApplication.
    setThreadExecutionState(requested);
    const QCoreApplication application(argc, argv);
    const QSocketNotifier notifier(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&notifier, &QSocketNotifier::activated, &notifier, [] {
        char input[9];
        if (read(STDIN_FILENO, input, sizeof input) <= 0) {
            std::atexit([] { setThreadExecutionState(withdrawn); });
            std::exit(0);
        }
        if (fork() == 0) {
            setThreadExecutionState(withdrawn);
            std::exit(0);
        }
        wait(nullptr);
        std::putchar('.');
        std::fflush(stdout);
    });
    return QCoreApplication::exec();
}

int main(int argc, char** argv)
{
    if (argc == 2 && qstrcmp(argv[1], "--fork") == 0)
        return forkAtInput(argc, argv);
    QCoreApplication application(argc, argv);
    tst_sleep_inhibitor test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_sleep_inhibitor.moc"
