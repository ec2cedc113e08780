#include <support/Files.h>
#include <support/Tools.h>

#include <netdiag/PingProcess.h>
#include <netdiag/SystemTools.h>
#include <netdiag/TracerouteProcess.h>

#include <ovcore/Settings.h>

#include <QtTest>

#include <memory>
#include <utility>
#include <vector>

namespace {

const QByteArray maxHopsOption = SystemTools::tracerouteMaxHops;
const QByteArray searchPath = qgetenv("PATH");

/// A TracerouteProcess with a separate application directory. Records the signals.
struct Trace
{
    explicit Trace(const char* subdirectory = ".")
        : path(directory.filePath(QLatin1String(subdirectory)) + "/traceroute.out"_s)
    {
        Core::Settings::instance().setApplicationDirPath(QFileInfo(path).path());
        process = std::make_unique<TracerouteProcess>();
        _sinceSignal.start();
        const auto record = [this](auto signal, const char* name) {
            QObject::connect(process.get(), signal, process.get(), [this, name] {
                received.append(name);
                pause = _sinceSignal.restart();
            });
        };
        record(&TracerouteProcess::started, "started");
        record(&TracerouteProcess::readyReadStandardOutput, "changed");
        record(&TracerouteProcess::finished, "finished");
    }

    void run(const char* host)
    {
        received.clear();
        process->doTraceroute(QString::fromLatin1(host));
    }

    QByteArray report() const { return Tools::textOf(process->readAllStandardOutput()); }

    const QTemporaryDir directory;
    const QString path;
    QByteArrayList received;
    qint64 pause = 0; ///< between the last two signals, in milliseconds
    std::unique_ptr<TracerouteProcess> process;

private:
    QElapsedTimer _sinceSignal;
};

} // namespace

class tst_netdiag : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { Tools::findIn(QStringLiteral(FAKE_TOOL_DIR)); }

    void limitedPing()
    {
        if (!SystemTools::pingRunsUntilStopped)
            QSKIP("the tool of this system ends by itself");
        PingProcess ping;
        // The second before the first output of "late" does not count.
        for (const auto& [host, count] : {std::pair("late", 1), {"endless", 2}}) {
            ping.setCount(count);
            QElapsedTimer elapsed;
            elapsed.start();
            ping.doPing(QString::fromLatin1(host));
            // Calls during a run have no effect on it.
            ping.setCount(5);
            QTest::ignoreMessage(QtWarningMsg, "QProcess::start: Process is already running");
            ping.doPing("other"_s);

            QTRY_COMPARE(ping.state(), QProcess::NotRunning);
            const qint64 excess = elapsed.elapsed() - 1500;
            QVERIFY2(excess >= 0 && excess < 500, qPrintable(QString::number(excess)));
            QCOMPARE(ping.exitStatus(), QProcess::NormalExit);
            QCOMPARE(ping.readAllStandardOutput(), QByteArray(host) + "\nsummary\n");
        }
    }

    void unlimitedPing()
    {
        static int warnings = 0;
        const auto handler = qInstallMessageHandler(
            [](QtMsgType, const QMessageLogContext&, const QString&) { ++warnings; });
        const auto restoreHandler = qScopeGuard([=] { qInstallMessageHandler(handler); });
        // As an int, the last would be a fifth of a second in milliseconds.
        for (const int count : {0, -1, 4294968}) {
            PingProcess ping;
            ping.setCount(1);
            ping.setPackageSize(1000);
            const QByteArray host = "-x; two words\"";
            ping.doPing(QString::fromLatin1(host));
            QVERIFY(ping.waitForFinished());
            QCOMPARE(ping.program(), "ping"_s);
            QCOMPARE(Tools::textOf(ping.readAllStandardOutput()), host + '\n');
            QCOMPARE(Tools::textOf(ping.readAllStandardError()), QByteArray("complaint\n"));
            // Neither the limit of that run nor that for a tool without output, which is longer
            // than a test may wait.
            ping.setCount(count);
            ping.doPing("endless"_s);
            QVERIFY(ping.waitForReadyRead());
            QCOMPARE(ping.state(), QProcess::Running);
            for (const QTimer* timer : ping.findChildren<QTimer*>())
                QVERIFY(!timer->isActive());
        }
        // The destructor ends a run silently.
        QCOMPARE(warnings, 0);
    }

    void traceReport()
    {
        Trace trace;
        // The report may be removed between two runs.
        trace.run("silent");
        QTRY_VERIFY(QFile::remove(trace.path) || !QFile::exists(trace.path));
        QTRY_COMPARE(trace.received, QByteArrayList({"started", "changed"}));
        trace.run("10.0.0.1");
        QTRY_COMPARE(trace.received.last(), QByteArray("changed"));
        QTRY_COMPARE(trace.report(), maxHopsOption + "\n10\n10.0.0.1\ncomplaint\n");
        const TracerouteProcess emptying;
        QCOMPARE(trace.report(), QByteArray());

        trace.process->setMaxHops(30);
        trace.process->setPackageSize(1000);
        trace.run("slow");
        QCOMPARE(trace.received, QByteArrayList({"started"}));
        const QByteArray first = maxHopsOption + "\n30\nslow\ncomplaint\n";
        QTRY_COMPARE(trace.report(), first);
        trace.run("$(two)  words");
        // The earlier tool appends to the output of the new one.
        QTRY_COMPARE(trace.report(), maxHopsOption + "\n30\n$(two)  words\ncomplaint\n 1  later\n");

        // A later change of the application directory does not affect the object.
        const QTemporaryDir other;
        Core::Settings::instance().setApplicationDirPath(other.path());
        trace.run("slow");
        QTRY_COMPARE(trace.report(), first);
        trace.process.reset();
        QTRY_COMPARE(Tools::textOf(contentOf(trace.path)), first + " 1  later\n");
    }

    void quietTrace()
    {
        // In parallel, since each takes seven seconds.
        Trace growing;
        growing.run("slow");
        Trace silent;
        silent.run("previous");
        QTRY_VERIFY(silent.report().endsWith("complaint\n"));
        silent.run("silent");
        Trace nowhere("missing");
        nowhere.run("host");
        Tools::findIn(QCoreApplication::applicationDirPath());
        Trace toolless;
        std::vector<const Trace*> traces{&growing, &silent, &nowhere};
        // The system's own tool may be found always.
        if (!Tools::isAlwaysFound(QLatin1String(SystemTools::traceroute))) {
            toolless.run("host");
            traces.push_back(&toolless);
        }

        for (const Trace* trace : traces) {
            QTRY_VERIFY_WITH_TIMEOUT(trace->received.contains("finished"), 10000);
            // Windows counts the time of a timer in whole milliseconds, the first of which has
            // begun.
            QVERIFY2(trace->pause >= 6999 && trace->pause < 7700,
                     qPrintable(QString::number(trace->pause)));
            if (trace == &growing)
                continue;
            QCOMPARE(trace->received, QByteArrayList({"started", "finished"}));
            QCOMPARE(trace->report(), QByteArray());
        }
        QVERIFY(growing.received.contains("changed"));
        QCOMPARE(growing.received.count("finished"), 1);
        QVERIFY(growing.process->toolProcessId() > 0);
        QCOMPARE(toolless.process->toolProcessId(), 0);
    }

    void systemsTools()
    {
        Tools::findIn(QCoreApplication::applicationDirPath());
        qputenv("PATH", searchPath);
        const auto isFound = [](const char* tool) {
            return !QStandardPaths::findExecutable(QLatin1String(tool)).isEmpty();
        };
        const bool hasTraceroute = isFound(SystemTools::traceroute);
        if (hasTraceroute) {
            Trace trace;
            trace.run("127.0.0.1");
            // The heading and the only hop name the host.
            QTRY_VERIFY(trace.report().count("127.0.0.1") >= 2);
        }
        if (!isFound(SystemTools::ping))
            QSKIP("needs the system's ping");
        PingProcess ping;
        ping.doPing("127.0.0.1"_s);
        QTRY_COMPARE_WITH_TIMEOUT(ping.state(), QProcess::NotRunning, 10000);
        const QByteArray report = ping.readAllStandardOutput().toLower();
        if (report.contains("transmit failed"))
            QSKIP("the system's ping may not send for this user");
        QVERIFY2(ping.exitCode() == 0 && report.count("ttl=") == 4, report);
        if (!hasTraceroute)
            QSKIP("needs the system's traceroute");
    }
};

QTEST_GUILESS_MAIN(tst_netdiag)
#include "tst_netdiag.moc"
