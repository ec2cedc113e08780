#include <support/Tools.h>

#include <netdiag/SystemTools.h>

#include <QtTest>

#include <QProcess>
#include <QRegularExpression>

#ifdef Q_OS_UNIX
#include <signal.h>
#endif

#ifdef Q_OS_WIN
#define MAX_HOPS_OPTION "-h"
#else
#define MAX_HOPS_OPTION "-m"
#endif

namespace {

struct Outcome
{
    int status = -1;
    QStringList output;
    QStringList errors;
};

QStringList linesOf(const QByteArray& text)
{
    QStringList lines = QString::fromLocal8Bit(Tools::textOf(text)).split(QLatin1Char('\n'));
    lines.removeLast(); // what follows the last line's end
    return lines;
}

Outcome outcomeOf(QProcess& host)
{
    if (!host.waitForFinished() || host.exitStatus() != QProcess::NormalExit)
        return {};
    return {host.exitCode(), linesOf(host.readAllStandardOutput()),
            linesOf(host.readAllStandardError())};
}

Outcome runHost(const QStringList& arguments)
{
    QProcess host;
    host.start(QStringLiteral(OVAPP_HOST), arguments);
    return outcomeOf(host);
}

QStringList words(const char* text)
{
    return QString::fromLatin1(text).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

class tst_host : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void session();
    void documents_data();
    void documents();
    void usage_data();
    void usage();
    void directoryThatCannotBeWritten();
    void networkTools_data();
    void networkTools();
    void interrupt_data();
    void interrupt();

private:
    QTemporaryDir _directory;
};

void tst_host::session()
{
    const QString document = _directory.filePath(QStringLiteral("coaster.ovdoc"));
    QVERIFY(QFile::copy(QStringLiteral(OVAPP_SAMPLES "/documents/coaster.ovdoc"), document));
    // Plug-ins have a test of their own.
    const QTemporaryDir noPlugins;
    const Outcome outcome = runHost(words("run --board 4 --app-dir %1 --plugins %2 --document %3")
                                        .replaceInStrings(QStringLiteral("%1"), _directory.path())
                                        .replaceInStrings(QStringLiteral("%2"), noPlugins.path())
                                        .replaceInStrings(QStringLiteral("%3"), document));
    QCOMPARE(outcome.errors, QStringList());
    QCOMPARE(outcome.status, 0);

    // Who does what, without the times, and without the beats, which are as many as time allows.
    QStringList events;
    for (QString line : outcome.output) {
        QVERIFY2(line.contains(QRegularExpression(QStringLiteral("^ *[0-9]+ ms  "))),
                 qPrintable(line));
        line.remove(QRegularExpression(QStringLiteral("^ *[0-9]+ ms  ")));
        if (!line.endsWith(QLatin1String("is alive")))
            events.append(
                line.replace(QRegularExpression(QStringLiteral("  +")), QStringLiteral(": ")));
    }
    QVERIFY(events.size() < outcome.output.size());
    const QString expected = QStringLiteral(R"(host: starts the library
log: Application::attachObservers.
host: loads and starts the plug-ins
plug-in-state listener: state 0
host: has completed its own start-up
start-finish listener: start-up is complete
log: Application::doAppStartFinished:: application started.
host: opens the document
new-document listener: opened: coaster.ovdoc, 12 of 250 finished
host: changes the document, notifies and posts
transaction listener: "Finish a piece" in: coaster.ovdoc, 13 of 250 finished
property listener: flag true, value 13, in: coaster.ovdoc, 13 of 250 finished
object-list listener: changed in: coaster.ovdoc, 13 of 250 finished
selection listener: changed in: coaster.ovdoc, 13 of 250 finished
host: runs the event loop
receiver: receives the transaction "Finish a piece", changes only, object types -1
QCoreApplication: receives a change of the selection
receiver: receives a switch to the screen layout of board type 4
host: starts and stops the channels
log: CommInfoRegistry::registerCommInfo: heartbeat channel
heartbeat channel: starts
heartbeat channel: stops
log: CommInfoRegistry::unregisterCommInfo: heartbeat channel
host: reverts the document: activates it as it is on disk
active-document listener: active now: coaster.ovdoc, 12 of 250 finished
host: closes the document
close-document listener: closed: coaster.ovdoc, 12 of 250 finished
host: stops and unloads the plug-ins
host: stops the library
log: destruct application.)");
    QCOMPARE(events, expected.split(QLatin1Char('\n')));
    QCOMPARE(contentOf(document),
             contentOf(QStringLiteral(OVAPP_SAMPLES "/documents/coaster.ovdoc")));
}

void tst_host::documents_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("problem");
    QTest::newRow("missing") << "none" << QByteArray() << "there is no such file";
    QTest::newRow("directory") << "." << QByteArray() << "it is a directory";
    QTest::newRow("empty") << "empty" << QByteArray("") << "it is empty";
    QTest::newRow("truncated") << "truncated" << QByteArray(R"({"format": "ovdoc", "ver)")
                               << "no JSON at byte";
    QTest::newRow("other version")
        << "later" << QByteArray(R"({"format": "ovdoc", "version": 2})") << "\"version\"";
    QTest::newRow("name of two lines") << "a\nb" << QByteArray() << "a\\x0ab";
#ifdef Q_OS_LINUX
    // A file that opens and cannot be read, for the administrator either.
    QTest::newRow("unreadable") << "/proc/self/mem" << QByteArray() << "Input/output error";
#endif
}

void tst_host::documents()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, content);
    QFETCH(QString, problem);
    const QString path = QDir(_directory.path()).absoluteFilePath(name);
    if (!content.isNull()) {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(content), content.size());
    }
    const Outcome outcome = runHost({QStringLiteral("run"), QStringLiteral("--app-dir"),
                                     _directory.path(), QStringLiteral("--document"), path});
    QCOMPARE(outcome.status, 1);
    QCOMPARE(outcome.errors.size(), 1);
    const QString error = outcome.errors.first();
    QVERIFY2(error.startsWith(QLatin1String("ovapp-host: cannot open '")), qPrintable(error));
    QVERIFY2(error.contains(problem), qPrintable(error));
    QVERIFY2(outcome.output.last().endsWith(QLatin1String("destruct application.")),
             "the library was not taken down");
}

void tst_host::usage_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("text");
    QTest::newRow("nothing") << words("") << 2 << "a command is missing";
    QTest::newRow("unknown command") << words("dance") << 2 << "no command 'dance'";
    QTest::newRow("unknown option") << words("run --fast") << 2 << "fast";
    QTest::newRow("option without value") << words("run --document") << 2 << "document";
    QTest::newRow("argument") << words("run a.ovdoc") << 2 << "'a.ovdoc'";
    QTest::newRow("board") << words("run --board left") << 2 << "--board: 'left'";
    QTest::newRow("no host") << words("ping") << 2 << "one host is wanted, not 0";
    QTest::newRow("two hosts") << words("trace a b") << 2 << "one host is wanted, not 2";
    for (const char* host : {"", "-f", "a b", "a\tb", "a\x01"}) {
        QTest::addRow("host '%s'", host)
            << QStringList({QStringLiteral("ping"), QStringLiteral("--"), QLatin1String(host)}) << 2
            << "is no host";
    }
    QTest::newRow("count") << words("ping a --count -1") << 2 << "--count: '-1'";
    QTest::newRow("hops") << words("trace a --max-hops 0") << 2 << "--max-hops: '0'";
    QTest::newRow("help") << words("--help") << 0 << "run a whole session";
    QTest::newRow("help on a command") << words("run --help") << 0 << "--document <FILE>";
    QTest::newRow("version") << words("--version") << 0 << "ovapp-host ";
}

void tst_host::usage()
{
    QFETCH(QStringList, arguments);
    QFETCH(int, status);
    QFETCH(QString, text);
    const Outcome outcome = runHost(arguments);
    QCOMPARE(outcome.status, status);
    const QStringList& printed = status == 0 ? outcome.output : outcome.errors;
    const QStringList& silent = status == 0 ? outcome.errors : outcome.output;
    QVERIFY2(printed.join(QLatin1Char('\n')).contains(text),
             qPrintable(printed.join(QLatin1Char('\n'))));
    QCOMPARE(silent, QStringList());
    if (status != 0) {
        QCOMPARE(printed.size(), 1);
        QVERIFY(printed.first().startsWith(QLatin1String("ovapp-host: ")));
    }
}

void tst_host::directoryThatCannotBeWritten()
{
    QTemporaryFile file;
    QVERIFY(file.open());
    const Outcome outcome = runHost({QStringLiteral("run"), QStringLiteral("--app-dir"),
                                     file.fileName() + QStringLiteral("/below")});
    QCOMPARE(outcome.status, 0);
    QCOMPARE(outcome.errors.size(), 1);
    QVERIFY(outcome.errors.first().startsWith(QLatin1String("ovapp-host: warning: '")));
}

void tst_host::networkTools_data()
{
    QTest::addColumn<bool>("installed");
    QTest::addColumn<QString>("arguments");
    QTest::addColumn<int>("status");
    QTest::addColumn<QStringList>("output");
    QTest::addColumn<QStringList>("errors");
    const QStringList none;
    const auto missing = [](const char* tool, const char* package) {
        return QStringList(QStringLiteral("ovapp-host: the system's %1 tool cannot be launched; on "
                                          "Debian the package %2 brings it")
                               .arg(QLatin1String(tool), QLatin1String(package)));
    };
    QTest::newRow("answered") << true << "ping here" << 0 << words("here") << none;
    QTest::newRow("until the count")
        << true << "ping --count 1 endless" << 0 << words("endless summary") << none;
    QTest::newRow("not answered") << true << "ping unanswered" << 1 << words("unanswered")
                                  << QStringList(QStringLiteral("ovapp-host: complaint"));
    QTest::newRow("no ping") << false << "ping here" << 1 << none
                             << missing("ping", "iputils-ping");
    QTest::newRow("traced") << true << "trace --max-hops 3 slow" << 0
                            << words(MAX_HOPS_OPTION " 3 slow complaint later") << none;
    QTest::newRow("no trace-route")
        << false << "trace here" << 1 << none << missing("trace-route", "traceroute");
}

void tst_host::networkTools()
{
    QFETCH(bool, installed);
    QFETCH(QString, arguments);
    if (arguments.contains(QLatin1String("--count")) && !SystemTools::pingRunsUntilStopped)
        QSKIP("The tool of this system ends by itself");
    if (!installed && Tools::isAlwaysFound(arguments.startsWith(QLatin1String("ping"))
                                               ? QLatin1String(SystemTools::ping)
                                               : QLatin1String(SystemTools::traceroute)))
        QSKIP("This system's own tool cannot be hidden");
    Tools::findIn(installed ? QStringLiteral(STAND_IN_DIR)
                            : QCoreApplication::applicationDirPath());
    QProcess host;
    host.start(QStringLiteral(OVAPP_HOST), words(qPrintable(arguments)));
    const Outcome outcome = outcomeOf(host);
    QTEST(outcome.status, "status");
    QTEST(outcome.output, "output");
    QTEST(outcome.errors, "errors");
}

void tst_host::interrupt_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<int>("status");
    QTest::newRow("ping") << "ping" << 0;
    QTest::newRow("trace") << "trace" << 1;
}

void tst_host::interrupt()
{
#ifdef Q_OS_UNIX
    QFETCH(QString, command);
    Tools::findIn(QStringLiteral(STAND_IN_DIR));
    QProcess host;
    host.start(QStringLiteral(OVAPP_HOST), {command, QStringLiteral("endless")});
    QVERIFY(host.waitForReadyRead());
    QElapsedTimer elapsed;
    elapsed.start();
    QCOMPARE(::kill(static_cast<pid_t>(host.processId()), SIGINT), 0);
    const Outcome outcome = outcomeOf(host);
    QTEST(outcome.status, "status");
    QVERIFY(elapsed.elapsed() < 2000);
    QCOMPARE(outcome.output.last() == QLatin1String("summary"), outcome.status == 0);
#else
    QSKIP("no way here to interrupt one process");
#endif
}

QTEST_GUILESS_MAIN(tst_host)
#include "tst_host.moc"
