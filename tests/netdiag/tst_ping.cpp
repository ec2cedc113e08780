#include <support/Literals.h>
#include <support/Tools.h>

#include <netdiag/PingProcess.h>
#include <netdiag/SystemTools.h>

#include <QtTest>

#include <memory>

#ifdef Q_OS_UNIX
#include <signal.h>
#endif

namespace {

const QByteArray searchPath = qgetenv("PATH");

} // namespace

class tst_ping : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { Tools::findIn(QStringLiteral(STAND_IN_DIR)); }

    void metaObject()
    {
        const QMetaObject& meta = PingProcess::staticMetaObject;
        QCOMPARE(meta.className(), "PingProcess");
        QCOMPARE(meta.superClass(), &QProcess::staticMetaObject);
        QCOMPARE(meta.methodCount(), meta.methodOffset());
        QCOMPARE(meta.propertyCount(), meta.propertyOffset());
    }

    void commandLine()
    {
        PingProcess ping;
        ping.setCount(10);
        ping.setPackageSize(1000);
        for (const char* host : {"10.0.0.1", "-x; two words\""}) {
            ping.doPing(QString::fromLatin1(host));
            QVERIFY(ping.waitForFinished());
            QCOMPARE(Tools::textOf(ping.readAllStandardOutput()), QByteArray(host) + '\n');
            QCOMPARE(Tools::textOf(ping.readAllStandardError()), QByteArray("complaint\n"));
        }
    }

    void limitedRun()
    {
        if (!SystemTools::pingRunsUntilStopped)
            QSKIP("The tool of this system ends by itself");
        PingProcess ping;
        for (const int count : {1, 2}) {
            ping.setCount(count);
            QElapsedTimer elapsed;
            elapsed.start();
            ping.doPing("endless"_s);
            // Neither what is set nor what is called during a run has to do with it.
            ping.setCount(5);
            QTest::ignoreMessage(QtWarningMsg, "QProcess::start: Process is already running");
            ping.doPing("other"_s);

            QTRY_COMPARE(ping.state(), QProcess::NotRunning);
            const qint64 excess = elapsed.elapsed() - (count * 1000 - 500);
            QVERIFY2(excess >= 0 && excess < 500, qPrintable(QString::number(excess)));
            QCOMPARE(ping.exitStatus(), QProcess::NormalExit);
            QCOMPARE(ping.readAllStandardOutput(), QByteArray("endless\nsummary\n"));
        }
    }

    void unlimitedRun()
    {
        PingProcess ping;
        // The last is a fifth of a second, were its milliseconds kept in an int.
        for (const int count : {0, -1, 4294968}) {
            ping.setCount(1);
            ping.doPing("brief"_s);
            QVERIFY(ping.waitForFinished());
            // The first run's limit would strike during the second.
            ping.setCount(count);
            ping.doPing("endless"_s);
            QTest::qWait(800);
            QCOMPARE(ping.state(), QProcess::Running);
            ping.kill();
            QVERIFY(ping.waitForFinished());
        }
    }

    void missingTool()
    {
        if (Tools::isAlwaysFound("ping"_s))
            QSKIP("This system's own ping cannot be hidden");
        Tools::findIn(QCoreApplication::applicationDirPath());
        PingProcess ping;
        ping.setCount(1);
        ping.doPing("host"_s);
        // Beyond the end of the run that there would have been.
        QTest::qWait(800);
        QCOMPARE(ping.error(), QProcess::FailedToStart);
        QCOMPARE(ping.state(), QProcess::NotRunning);
    }

    void destruction()
    {
#ifdef Q_OS_UNIX
        auto ping = std::make_unique<PingProcess>();
        ping->doPing("endless"_s);
        QVERIFY(ping->waitForReadyRead());
        const auto pid = static_cast<pid_t>(ping->processId());
        QCOMPARE(::kill(pid, 0), 0);
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("still running"_s));
        ping.reset();
        QCOMPARE(::kill(pid, 0), -1);
#else
        QSKIP("No way here to see that a process is gone");
#endif
    }

    void systemsTool()
    {
        Tools::findIn(QCoreApplication::applicationDirPath());
        qputenv("PATH", searchPath);
        if (QStandardPaths::findExecutable("ping"_s).isEmpty())
            QSKIP("This system has no ping");
        PingProcess ping;
        ping.doPing("127.0.0.1"_s);
        QTRY_COMPARE_WITH_TIMEOUT(ping.state(), QProcess::NotRunning, 10000);
        QCOMPARE(ping.exitCode(), 0);
        // Four answers, and the summary.
        const QByteArray report = ping.readAllStandardOutput();
        QVERIFY2(report.count("ttl=") + report.count("TTL=") == 4, report);
        QVERIFY2(report.contains("0%"), report);
    }
};

QTEST_GUILESS_MAIN(tst_ping)
#include "tst_ping.moc"
