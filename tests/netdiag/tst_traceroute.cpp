#include <support/Literals.h>
#include <support/Tools.h>

#include <netdiag/TracerouteProcess.h>

#include <ovcore/Settings.h>

#include <QtTest>

#include <memory>
#include <vector>

namespace {

#ifdef Q_OS_WIN
const QString systemsName = "tracert"_s;
const QByteArray maxHopsOption = "-h";
#else
const QString systemsName = "traceroute"_s;
const QByteArray maxHopsOption = "-m";
#endif

const QByteArray searchPath = qgetenv("PATH");

/// An object with an application directory of its own and a record of its signals.
struct Trace
{
    explicit Trace(const char* subdirectory = ".", const QByteArray& formerReport = QByteArray())
        : path(directory.filePath(QLatin1String(subdirectory)) + "/traceroute.out"_s)
    {
        QFile file(path);
        if (!formerReport.isEmpty() && file.open(QIODevice::WriteOnly))
            file.write(formerReport);
        file.close();
        Core::Settings::instance().setApplicationDirPath(QFileInfo(path).path());
        process = std::make_unique<TracerouteProcess>();
        record(&TracerouteProcess::started, "started");
        record(&TracerouteProcess::readyReadStandardOutput, "changed");
        record(&TracerouteProcess::finished, "finished");
    }

    void record(void (TracerouteProcess::*signal)(), const char* name)
    {
        QObject::connect(process.get(), signal, [this, name] {
            news.append(name);
            silence = sinceNews.restart();
        });
    }

    void run(const char* host)
    {
        news.clear();
        sinceNews.start();
        process->doTraceroute(QString::fromLatin1(host));
    }

    QByteArray report() const { return Tools::textOf(process->readAllStandardOutput()); }

    const QTemporaryDir directory;
    const QString path;
    QByteArrayList news;
    QElapsedTimer sinceNews;
    qint64 silence = 0; ///< milliseconds between the last two signals
    std::unique_ptr<TracerouteProcess> process;
};

} // namespace

class tst_traceroute : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { Tools::findIn(QStringLiteral(STAND_IN_DIR)); }

    void metaObject()
    {
        const QMetaObject& meta = TracerouteProcess::staticMetaObject;
        QCOMPARE(meta.className(), "TracerouteProcess");
        QCOMPARE(meta.superClass(), &QObject::staticMetaObject);
        QByteArrayList methods;
        for (int i = meta.methodOffset(); i < meta.methodCount(); ++i)
            methods += meta.method(i).methodSignature();
        QCOMPARE(methods, QByteArrayList({"readyReadStandardOutput()", "started()", "finished()",
                                          "slotOnChanged()"}));
        const QMetaMethod slot = meta.method(meta.methodCount() - 1);
        QCOMPARE(slot.methodType(), QMetaMethod::Slot);
        QCOMPARE(slot.access(), QMetaMethod::Protected);
        QCOMPARE(meta.propertyCount(), meta.propertyOffset());
    }

    void emptyReport()
    {
        for (const char* formerReport : {"", "former"}) {
            const Trace trace(".", formerReport);
            QVERIFY(QFile::exists(trace.path));
            QCOMPARE(trace.report(), QByteArray());
        }
    }

    void commandLine()
    {
        Trace trace;
        trace.run("10.0.0.1");
        QTRY_COMPARE(trace.report(), maxHopsOption + "\n10\n10.0.0.1\ncomplaint\n");
        trace.process->setMaxHops(30);
        trace.process->setPackageSize(1000);
        trace.run("$(two) words");
        QTRY_COMPARE(trace.report(), maxHopsOption + "\n30\n$(two) words\ncomplaint\n");
    }

    void growingReport()
    {
        Trace trace;
        trace.run("slow");
        QCOMPARE(trace.news, QByteArrayList({"started"}));
        QTRY_VERIFY(trace.report().endsWith("complaint\n"));
        const QByteArray first = trace.report();
        QTRY_COMPARE(trace.news.last(), QByteArray("changed"));
        QTRY_COMPARE(trace.report(), first + "later\n");
    }

    void overlappingRuns()
    {
        Trace trace;
        trace.run("slow");
        QTRY_VERIFY(trace.report().endsWith("complaint\n"));
        trace.run("next");
        // The earlier tool goes on behind what the new one has written, and leaves no gap.
        QTRY_COMPARE(trace.report(), maxHopsOption + "\n10\nnext\ncomplaint\nlater\n");
    }

    void removedReport()
    {
        Trace trace;
        QVERIFY(QFile::remove(trace.path));
        QTRY_COMPARE(trace.news, QByteArrayList({"changed"}));
        trace.run("host");
        QTRY_COMPARE(trace.news.last(), QByteArray("changed"));
    }

    void quietPeriod()
    {
        // Side by side, since each takes its time.
        Trace growing;
        growing.run("slow");
        Trace silent;
        silent.run("former");
        QTRY_VERIFY(silent.report().endsWith("complaint\n"));
        silent.run("silent");
        Trace nowhere("missing");
        nowhere.run("host");
        Tools::findIn(QCoreApplication::applicationDirPath());
        Trace toolless;
        std::vector<Trace*> quiet{&silent, &nowhere};
        // Where the system's own tool is found anyway, no run goes without.
        if (!Tools::isAlwaysFound(systemsName)) {
            toolless.run("host");
            quiet.push_back(&toolless);
        }

        std::vector<Trace*> all = quiet;
        all.push_back(&growing);
        for (Trace* trace : all) {
            QTRY_VERIFY_WITH_TIMEOUT(trace->news.contains("finished"), 10000);
            const qint64 excess = trace->silence - 7000;
            QVERIFY2(excess >= 0 && excess < 700, qPrintable(QString::number(excess)));
        }
        QVERIFY(growing.report().endsWith("later\n"));
        QCOMPARE(growing.news.count("finished"), 1);
        QVERIFY(growing.process->toolProcessId() > 0);
        QCOMPARE(toolless.process->toolProcessId(), 0);
        for (const Trace* trace : quiet) {
            QCOMPARE(trace->news, QByteArrayList({"started", "finished"}));
            QCOMPARE(trace->report(), QByteArray());
        }
    }

    void destruction()
    {
        Trace trace;
        trace.run("slow");
        trace.process.reset();
        QFile file(trace.path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QTRY_VERIFY(file.seek(0) && Tools::textOf(file.readAll()).endsWith("later\n"));
        QCOMPARE(trace.news, QByteArrayList({"started"}));
    }

    void systemsTool()
    {
        Tools::findIn(QCoreApplication::applicationDirPath());
        qputenv("PATH", searchPath);
        if (QStandardPaths::findExecutable(systemsName).isEmpty())
            QSKIP("This system has no trace-route tool");
        Trace trace;
        trace.run("127.0.0.1");
        // The host in the heading and as the only hop.
        QTRY_VERIFY(trace.report().count("127.0.0.1") >= 2);
        QTRY_VERIFY(trace.news.contains("changed"));
    }
};

QTEST_GUILESS_MAIN(tst_traceroute)
#include "tst_traceroute.moc"
