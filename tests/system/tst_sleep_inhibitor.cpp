#include <support/Session.h>

#include <system/ExecutionState.h>

#include <QtTest>

#include <csignal>
#include <sys/wait.h>
#include <unistd.h>

using System::setThreadExecutionState;

// logind is slow on a busy machine.
#define TRY_INHIBITORS(expected) QTRY_COMPARE_WITH_TIMEOUT(inhibitors(), expected, 10000)

namespace {

const quint32 requested = 0x80000041u;
const quint32 withdrawn = 0x80000000u;
const QString none = "array [ ]"_s;

/// Calls a method of logind. Returns the reply without process IDs, or why there is none.
QString callLogind(const QByteArray& call)
{
    QProcess client;
    client.start("dbus-send"_s,
                 words("--system --print-reply=literal --dest=org.freedesktop.login1 "
                       "/org/freedesktop/login1 org.freedesktop." +
                       call));
    client.waitForFinished();
    const QByteArray reply = client.readAllStandardOutput() + client.readAllStandardError();
    return QString::fromUtf8(reply).simplified().remove(QRegularExpression(" uint32 \\d+"_s));
}

QString inhibitors()
{
    return callLogind("login1.Manager.ListInhibitors");
}

QString lock(const QString& types)
{
    return "array [ struct { %1 tst_sleep_inhibitor Sleep would stop the laser in the middle of a "
           "job block } ]"_s.arg(types);
}

const QString both = lock("sleep:idle"_s);

} // namespace

class tst_sleep_inhibitor : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        // Does not outlive the test, however that ends; logind ends with the bus.
        _daemon.start("setpriv"_s, words("--pdeathsig KILL -- dbus-daemon --session --nofork "
                                         "--print-address"));
        QVERIFY2(_daemon.waitForReadyRead(), "needs dbus-daemon: scripts/setup test");
        qputenv("DBUS_SYSTEM_BUS_ADDRESS", _daemon.readLine().trimmed());
        _logind.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        _logind.start("/usr/bin/python3"_s,
                      words("-m dbusmock --system --template %1", QStringLiteral(LOGIND_TEMPLATE)));
        // Without events: the lock that main() requests is not acquired before.
        for (int i = 0; i < 300 && inhibitors() != none; ++i)
            QThread::msleep(100);
        QVERIFY2(inhibitors() == none, "needs python3-dbusmock: scripts/setup test");
        TRY_INHIBITORS(both);
        setThreadExecutionState(withdrawn);
        TRY_INHIBITORS(none);
    }

    void cleanupTestCase()
    {
        _daemon.kill();
        _daemon.waitForFinished();
        _logind.waitForFinished();
    }

    void policies()
    {
        for (const auto& [refused, held] :
             {std::pair("", both), {"sleep", lock("idle"_s)}, {"sleep:idle", none}, {"", both}}) {
            callLogind(QByteArray("DBus.Mock.Refuse string:") + refused);
            QProcess child;
            {
                const Session session;
                QTest::qWait(200);
                TRY_INHIBITORS(held);
                // Processes that the program starts may outlive it.
                child.start("cat"_s, QStringList());
                QVERIFY(child.waitForStarted());
            }
            TRY_INHIBITORS(none);
            child.closeWriteChannel();
            QVERIFY(child.waitForFinished());
        }
    }

    void threads()
    {
        const auto runInThread = [](auto&& function) {
            const std::unique_ptr<QThread> thread(QThread::create(function));
            thread->start();
            QTRY_VERIFY(thread->isFinished());
        };
        runInThread([] {
            QCOMPARE(setThreadExecutionState(0x00000001u), withdrawn);
            QCOMPARE(setThreadExecutionState(requested), 0x00000001u);
            QCOMPARE(setThreadExecutionState(0x00000040u), requested);
            TRY_INHIBITORS(both);
            QCOMPARE(setThreadExecutionState(0x80000040u), 0x00000040u);
            TRY_INHIBITORS(none);
            setThreadExecutionState(requested);
            TRY_INHIBITORS(both);
        });
        TRY_INHIBITORS(none);
        QCOMPARE(setThreadExecutionState(requested), withdrawn);
        runInThread([] {
            setThreadExecutionState(requested);
            setThreadExecutionState(withdrawn);
        });
        TRY_INHIBITORS(both);
        setThreadExecutionState(withdrawn);
        TRY_INHIBITORS(none);
    }

    void forkAndExit()
    {
        setThreadExecutionState(requested);
        TRY_INHIBITORS(both);
        const pid_t child = fork();
        if (child == 0) {
            setThreadExecutionState(withdrawn);
            setThreadExecutionState(requested);
            // Called after the destruction of thread-local objects.
            std::atexit([] { setThreadExecutionState(withdrawn); });
            std::exit(0);
        }
        int status = -1;
        QCOMPARE(waitpid(child, &status, 0), child);
        QCOMPARE(status, 0);
        QTest::qWait(100);
        TRY_INHIBITORS(both);
        setThreadExecutionState(withdrawn);
        TRY_INHIBITORS(none);
    }

    void muteBus()
    {
        const auto daemon = pid_t(_daemon.processId());
        kill(daemon, SIGSTOP);
        const auto goOn = qScopeGuard([=] { kill(daemon, SIGCONT); });
        qint64 fastest = std::numeric_limits<qint64>::max();
        for (int i = 0; i < 20; ++i) {
            QElapsedTimer timer;
            timer.start();
            {
                const Session session;
                QCoreApplication::processEvents();
            }
            fastest = qMin(fastest, timer.nsecsElapsed());
        }
        QVERIFY2(fastest < 5000000, qPrintable(QString::number(fastest)));
    }

private:
    QProcess _daemon;
    QProcess _logind;
};

int main(int argc, char** argv)
{
    // Before there is a QCoreApplication.
    setThreadExecutionState(requested);
    QCoreApplication application(argc, argv);
    tst_sleep_inhibitor test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_sleep_inhibitor.moc"
