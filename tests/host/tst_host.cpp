#include <support/Files.h>
#include <support/Host.h>

#include <netdiag/SystemTools.h>
#include <ovcore/Version.h>

#include <QtTest>

#include <limits>
#include <optional>
#include <tuple>

#ifdef Q_OS_UNIX
#include <csignal>
#include <signal.h>
#include <sys/stat.h>
#endif

class tst_host : public QObject
{
    Q_OBJECT

    /// On Windows, paths that are compiled into the test are relative to its drive.
    const QString _previousPath = QDir::currentPath();
    std::optional<QTemporaryDir> _directory;

    QString path(const QString& name) const { return _directory->filePath(name); }
    /// Runs ovapp-host with arguments in which "%1" is the test's directory.
    Outcome run(const char* arguments) const
    {
        return runHost(words(arguments, _directory->path()));
    }

private Q_SLOTS:
    void init() { _directory.emplace(); }
    void cleanup() { QDir::setCurrent(_previousPath); }

    void session()
    {
        const QByteArray content =
            contentOf(QStringLiteral(OVAPP_SAMPLES "/documents/coaster.ovdoc"));
        writeFile(path("coaster.ovdoc"_s), content);
        const Outcome outcome =
            run("run --board 4 --app-dir %1 --plugins %1 --document %1/coaster.ovdoc");
        QCOMPARE(outcome.errors, QStringList());
        QCOMPARE(outcome.status, 0);

        // The events without their times, and without the heartbeats, whose number varies.
        QStringList events;
        for (QString line : outcome.output) {
            QVERIFY2(line.contains(QRegularExpression("^ *[0-9]+ ms  "_s)), qPrintable(line));
            line.remove(QRegularExpression("^ *[0-9]+ ms  "_s));
            if (!line.endsWith("is alive"_s))
                events.append(line.replace(QRegularExpression("  +"_s), ": "_s));
        }
        QVERIFY(events.size() < outcome.output.size());
        const QString expected = R"(host: starts the library
log: Application::attachObservers.
host: loads and starts the plug-ins
host: lists the plug-ins
plug-in-state listener: state 0
host: completes its start-up
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
host: reverts the document to the file's content
active-document listener: active now: coaster.ovdoc, 12 of 250 finished
host: closes the document
close-document listener: closed: coaster.ovdoc, 12 of 250 finished
host: stops and unloads the plug-ins
host: stops the library
log: destruct application.)"_s;
        QCOMPARE(events, expected.split(u'\n'));
        QCOMPARE(contentOf(path("coaster.ovdoc"_s)), content);
    }

    void documentThatCannotBeOpened()
    {
        const Outcome outcome = runHost({"run"_s, "--app-dir"_s, _directory->path(), "--document"_s,
                                         "a\nb\u202e\u2028\U0001f600"_s});
        QCOMPARE(outcome.status, 1);
        QCOMPARE(outcome.errors,
                 QStringList("ovapp-host: cannot open 'a\\x0ab\\x202e\\x2028\U0001f600': there is "
                             "no such file"_s));
        QVERIFY2(outcome.output.last().endsWith("destruct application."_s),
                 qPrintable(outcome.output.last()));
    }

    void usage()
    {
        const QString name = QFileInfo(hostPath).completeBaseName();
        const QString version = "%1 %2 (Qt %3)"_s.arg(
            name, QString::fromUtf8(Core::Version::versionString()), QLatin1String(qVersion()));
        const std::tuple<QStringList, QString, int> rows[] = {
            {{}, "expected a command"_s, 2},
            {words("dance"), "unknown command 'dance'"_s, 2},
            {words("run --fast"), "unknown option 'fast'"_s, 2},
            {words("run a.ovdoc"), "unexpected argument 'a.ovdoc'"_s, 2},
            {{"run"_s, "--app-dir"_s, QString()}, "--app-dir: expected a directory"_s, 2},
            {words("run --board left"), "--board: 'left'"_s, 2},
            {words("run --plugins missing"), "--plugins: "_s, 2},
            {words("trace a b"), "expected one host, got 2"_s, 2},
            {{"ping"_s, "--"_s, QString()}, "is not a host name"_s, 2},
            {words("ping -- -f"), "is not a host name"_s, 2},
            {{"ping"_s, "a b"_s}, "is not a host name"_s, 2},
            // Its milliseconds do not fit into an int.
            {words("plugins --timeout 2147484"), "--timeout: '2147484'"_s, 2},
            {words("ping a --count -1"), "--count: '-1'"_s, 2},
            {words("trace a --max-hops 0"), "--max-hops: '0'"_s, 2},
            {words("--help"), "run a whole session"_s, 0},
            {words("run --help"), name + " run [options]"_s, 0},
            {words("--version"), version, 0}};
        for (const auto& [arguments, text, status] : rows) {
            const Outcome outcome = runHost(arguments);
            QCOMPARE(outcome.status, status);
            const QStringList& printed = status == 0 ? outcome.output : outcome.errors;
            QVERIFY2(printed.join(u'\n').contains(text), qPrintable(printed.join(u'\n')));
            QCOMPARE(status == 0 ? outcome.errors : outcome.output, QStringList());
            QVERIFY(status == 0 ||
                    (printed.size() == 1 && printed.first().startsWith("ovapp-host: "_s)));
        }
    }

    void networkTools()
    {
        const QStringList hops{QLatin1String(SystemTools::tracerouteMaxHops)};
        const bool endless = SystemTools::pingRunsUntilStopped;
        const QString strayReport = QFileInfo(hostPath).path() + "/traceroute.out"_s;
        QFile::remove(strayReport);
        const std::tuple<const char*, int, QStringList, QString> rows[] = {
            {"ping --count 0 here", 0, words("here"), {}},
            {endless ? "ping --count 1 endless" : "ping here",
             0,
             endless ? words("endless summary") : words("here"),
             {}},
            {"ping unanswered", 1, words("unanswered"), "ovapp-host: complaint"_s},
            {"trace --max-hops 1 slow",
             0,
             hops + words("1 slow complaint") + QStringList(" 1  later"_s),
             {}},
            {"trace here", 1, hops + words("10 here complaint"),
             "ovapp-host: no hop to 'here' was found"_s}};
        Tools::findIn(QStringLiteral(FAKE_TOOL_DIR));
        for (const auto& [arguments, status, output, error] : rows) {
            const Outcome outcome = run(arguments);
            QCOMPARE(outcome.errors.join(u'\n'), error);
            QCOMPARE(outcome.output, output);
            QCOMPARE(outcome.status, status);
        }
        QVERIFY(!QFile::exists(strayReport));

        Tools::findIn(QCoreApplication::applicationDirPath());
        for (const auto& [command, tool, name, package] :
             {std::tuple("ping here", SystemTools::ping, "ping", "iputils-ping"),
              {"trace here", SystemTools::traceroute, "traceroute", "traceroute"}}) {
            // Some systems' own tools cannot be hidden.
            if (Tools::isAlwaysFound(QLatin1String(tool)))
                continue;
            const Outcome outcome = run(command);
            QCOMPARE(outcome.errors.join(u'\n'),
                     "ovapp-host: cannot start the system's %1 tool; on Debian, install %2"_s.arg(
                         QLatin1String(name), QLatin1String(package)));
            QCOMPARE(outcome.status, 1);
        }
    }

#ifdef Q_OS_UNIX
    /// The signals reach the host only. SIGHUP is ignored, as by `nohup`.
    void interrupt()
    {
        const std::tuple<const char*, QString, int, QString, QString> rows[] = {
            {"ping --count 0 endless", "endless"_s, SIGTERM, "summary"_s, {}},
            {"ping --count 0 late", "late"_s, SIGINT, "summary"_s, "ovapp-host: interrupted"_s},
            {"trace endless", "endless"_s, SIGINT, "summary"_s, "ovapp-host: interrupted"_s},
            // There is about one heartbeat per second.
            { "run --stay --app-dir %1 --plugins %1",
              "[0-9]{4} ms  heartbeat channel +is alive"_s,
              SIGTERM,
              "destruct application."_s,
              {} }};
        for (const auto& [arguments, readyOutput, signalSent, lastLine, errors] : rows) {
            QProcess host;
            startWithFakeTools(host, arguments, R"(trap "" HUP; exec "$@")");
            while (!QString::fromUtf8(host.peek(100000)).contains(QRegularExpression(readyOutput)))
                QVERIFY(host.waitForReadyRead());
            const auto pid = static_cast<pid_t>(host.processId());
            QCOMPARE(::kill(pid, SIGHUP), 0);
            QVERIFY(!host.waitForFinished(200));
            QElapsedTimer elapsed;
            elapsed.start();
            QCOMPARE(::kill(pid, signalSent), 0);
            const Outcome outcome = outcomeOf(host);
            QCOMPARE(outcome.errors.join(u'\n'), errors);
            QCOMPARE(outcome.status, errors.isEmpty() ? 0 : 1);
            QVERIFY(elapsed.elapsed() < 2000);
            QVERIFY2(outcome.output.last().endsWith(lastLine), qPrintable(outcome.output.last()));
        }
    }

    /// The host reports that, and leaves neither temporary files nor processes.
    void unwritableOutput()
    {
        for (const char* arguments : {"--version", "ping --count 0 late", "trace late",
                                      "run --stay --app-dir %1 --plugins %1"}) {
            const QTemporaryDir temporary;
            QProcess shell;
            // Qt creates the latter among the temporary files otherwise.
            shell.setEnvironment(QProcess::systemEnvironment() +
                                 QStringList{"TMPDIR="_s + temporary.path(),
                                             "XDG_RUNTIME_DIR="_s + _directory->path()});
            shell.setWorkingDirectory(_directory->path());
            startWithFakeTools(shell, arguments,
                               QByteArray(R"(("$@"; echo $? >&2) )") +
                                   (arguments[0] == '-' ? ">/dev/full" : "| :"));
            QCOMPARE(outcomeOf(shell).errors,
                     QStringList({"ovapp-host: cannot write to standard output"_s, "1"_s}));
            QVERIFY(QDir(temporary.path()).isEmpty());
            for (const QString& process : QDir("/proc"_s).entryList(QDir::Dirs)) {
                QVERIFY2(QFile::symLinkTarget("/proc/"_s + process + "/cwd"_s) !=
                             _directory->path(),
                         "a process is still running");
            }
        }
    }
#endif

    void verdictsOnPlugins()
    {
        // Sanitizers would turn the crash into an exit.
        for (const char* options : {"ASAN_OPTIONS", "TSAN_OPTIONS"})
            qputenv(options, "handle_segv=0");
        _directory.emplace(QDir::temp().filePath("\u00c4 \u65e5\u672c-XXXXXX"_s));
        QByteArray otherVersion = failingPlugin("");
        otherVersion[otherVersion.indexOf("ovapp\x81\x65") + 7] = '9';
#ifdef Q_OS_LINUX
        const char* const crash = "ended by SIGSEGV while it was loaded";
#else
        const char* const crash = "while it was loaded";
#endif
        const std::tuple<const char*, QByteArray, const char*, const char*> rows[] = {
            {"accepted.dll", failingPlugin("started wait"), "accepted", "accepted"},
            {"board.dll", contentOf(QStringLiteral(PLUGIN_B)), "other-board",
             "for another board: supportedBoard"},
            {"crash.dll", failingPlugin("loaded crash"), "crashed", crash},
            {"exit.dll", failingPlugin("unloaded exit"), "exited",
             "exit code 0 while it was unloaded"},
            {"hang.dll", failingPlugin("stopped hang"), "timed-out",
             "4 s, and was ended while it was stopped"},
            {"registers.dll", failingPlugin("registers"), "incomplete-stop",
             "registered (channels: 1, extensions: 2, listeners: 1)"},
            {"start.dll", failingPlugin("started throw"), "exception",
             "start() threw an exception: test exception"},
            {"text.dll", "text", "no-plugin", "cannot be used: it is not a library"},
            {"version.dll", otherVersion, "other-version", "it is built for ovapp 9"}};
        for (const auto& [name, content, verdict, explanation] : rows)
            writeFile(path(QLatin1String(name)), content);
        const QStringList command = words(
            "plugins --profile --json --timeout 4 --board 0X80000004 --app-dir %1 --plugins %1",
            _directory->path());
        const Outcome outcome = runHost(command);
        QCOMPARE(outcome.status, 1);
        QCOMPARE(outcome.errors.last(), "ovapp-host: 7 of 9 plug-in files cannot be used"_s);
        const QJsonObject json = jsonOf(outcome);
        QCOMPARE(json.value("directory"_s).toString(), _directory->path());
        QCOMPARE(json.value("board"_s).toInt(), std::numeric_limits<int>::min() + 4);
        const QJsonArray plugins = json.value("plugins"_s).toArray();
        QCOMPARE(plugins.size(), 9);
        for (int i = 0; i < plugins.size(); ++i) {
            const QJsonObject plugin = plugins.at(i).toObject();
            const auto& [name, content, expectedVerdict, expectedExplanation] = rows[i];
            QCOMPARE(plugin.value("file"_s).toString(), path(QLatin1String(name)));
            QCOMPARE(plugin.value("verdict"_s).toString(), QLatin1String(expectedVerdict));
            QCOMPARE(plugin.value("accepted"_s).toBool(), i == 0);
            const QString explanation = plugin.value("explanation"_s).toString();
            QVERIFY2(explanation.contains(QLatin1String(expectedExplanation)),
                     qPrintable(explanation));
            QVERIFY(i < 1 || QFile::remove(path(QLatin1String(name))));
        }
        // What the loader found out before the failure is in the report.
        QCOMPARE(plugins.at(4).toObject().value("identifier"_s).toString(), "0x1f"_s);

        // The files that cannot be used have been removed.
        const Outcome accepted = runHost(command);
        QCOMPARE(accepted.status, 0);
        QCOMPARE(accepted.errors, words("loaded queried started stopped unloaded"));
        const QJsonObject plugin = jsonOf(accepted).value("plugins"_s).toArray().at(0).toObject();
        QVERIFY(plugin.value("start_ms"_s).toDouble() > 300 &&
                plugin.value("stop_ms"_s).toDouble() < 300);

        const QStringList tableCommand =
            command.filter(QRegularExpression("^(?!--json|--profile)"_s));
        const Outcome table = runHost(tableCommand);
        QCOMPARE(table.errors, words("loaded queried stopped unloaded"));
        QCOMPARE(table.output.last().split(QRegularExpression("  +"_s)),
                 QStringList({"accepted.dll"_s, "Failing"_s, "2.5"_s,
                              QString::fromUtf8(Core::Version::versionString()), "0x1f"_s, "0x4"_s,
                              "accepted"_s}));

        QVERIFY(QFile::remove(path("accepted.dll"_s)));
        const Outcome empty = runHost(tableCommand);
        QCOMPARE(empty.status, 0);
        QVERIFY(empty.output.join(u'\n').contains(_directory->path()));
    }

    void givenFiles()
    {
        for (const QString& name : words("a/my.dll b/my.dll b/other.so"))
            writeFile(path(name), failingPlugin(""));
        QVERIFY(QDir::setCurrent(path("a"_s)));
        const QStringList command = words("plugins --board 4 --app-dir %1", _directory->path());
        for (const auto& [file, error] :
             {std::pair("missing.dll"_s, "'missing.dll' does not exist"_s),
              {"../b"_s, "'../b' is a directory; use --plugins for it"_s}}) {
            const Outcome outcome = runHost(command + QStringList{"my.dll"_s, file});
            QCOMPARE(outcome.status, 2);
            QCOMPARE(outcome.output, QStringList());
            QCOMPARE(outcome.errors, QStringList("ovapp-host: "_s + error));
        }
        const Outcome outcome = runHost(command + words("my.dll ../b/my.dll ../b/other.so"));
        QCOMPARE(outcome.status, 0);
        QStringList files = outcome.output.filter(QRegularExpression(" accepted$"_s));
        files.replaceInStrings(QRegularExpression(" .*"_s), QString());
        QCOMPARE(files, words("my.dll ../b/my.dll ../b/other.so"));
        const QString same =
            "ovapp-host: warning: my.dll, ../b/my.dll, ../b/other.so have the same "_s;
        QCOMPARE(outcome.errors.filter("warning"_s),
                 QStringList({"ovapp-host: warning: '../b/other.so' would be skipped in a plug-in "
                              "directory: the suffix of plug-in files is .dll"_s,
                              same + "identifier, '0x1f'"_s, same + "name, 'Failing'"_s}));
    }

#ifdef WINDOW_PLUGIN
    void widgets()
    {
        // A machine without a display and a desktop session.
        for (const char* variable :
             {"DISPLAY", "WAYLAND_DISPLAY", "XDG_RUNTIME_DIR", "QT_QPA_PLATFORM"})
            qunsetenv(variable);
        QVERIFY(QFile::copy(QStringLiteral(WINDOW_PLUGIN), path("below.dll"_s)));
        for (const char* command : {"plugins", "plugins --profile", "run"}) {
            const Outcome outcome =
                run(QByteArray(command) + " --board 1 --app-dir %1 --plugins %1");
            QCOMPARE(outcome.errors, QStringList());
            QCOMPARE(outcome.status, 0);
            QVERIFY(!outcome.output.filter(QRegularExpression("below.dll.*accepted"_s)).isEmpty());
        }
    }
#endif

#ifdef Q_OS_UNIX
    void warnings()
    {
        for (const QString& name :
             words("below/my.so notes.txt .hidden.so closed/none ovapp.ini.lock/none"))
            writeFile(path(name));
        QVERIFY(QFile::link(_directory->path(), path("below/loop"_s)));
        QVERIFY(QFile::setPermissions(path("closed"_s), {}));
        const bool canRead = QFileInfo(path("closed"_s)).isReadable();
        const Outcome outcome = run("plugins --app-dir %1 --plugins %1");
        QVERIFY(QFile::setPermissions(path("closed"_s),
                                      QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
        QCOMPARE(outcome.status, 0);
        const QString warning = "ovapp-host: warning: '%1' is skipped: %2"_s;
        QStringList expected{
            "ovapp-host: warning: '%1' cannot be written: its lock file, ovapp.ini.lock, is in use "
            "or "
            "cannot be removed; settings will be lost, unless --app-dir names another directory"_s
                .arg(path("ovapp.ini"_s)),
            warning.arg(path("below/my.so"_s), "the suffix of plug-in files is .dll"_s)};
        // Root can read everything.
        if (!canRead)
            expected += warning.arg(path("closed"_s), "the directory cannot be read"_s);
        QCOMPARE(outcome.errors, expected);
    }
#endif

    void pluginsInSession()
    {
        writeFile(path("a.dll"_s), failingPlugin("started throw"));
        writeFile(path("b.dll"_s), failingPlugin("queried throw"));
        writeFile(path("c.dll"_s), failingPlugin("started quit"));
        const Outcome outcome = run("run --board 4 --app-dir %1 --plugins %1");
        QCOMPARE(outcome.errors, QStringList("ovapp-host: a plug-in has ended the event loop"_s));
        QCOMPARE(outcome.status, 1);
        QStringList steps = outcome.output.filter(QRegularExpression(" ms  host .*\\.dll"_s));
        steps.replaceInStrings(QRegularExpression("^.* ms  host +"_s), QString());
        QCOMPARE(steps.join(u'\n'),
                 "loads a.dll\nqueries a.dll\nstarts a.dll\n"
                 "loads b.dll\nqueries b.dll\nunloads b.dll\n"
                 "loads c.dll\nqueries c.dll\nstarts c.dll\n"
                 "a.dll: accepted, but start() threw an exception: test exception\n"
                 "b.dll: cannot be used: pluginID() threw an exception: test exception\n"
                 "c.dll: accepted\n"
                 "stops c.dll\nunloads c.dll\nstops a.dll\nunloads a.dll"_s);

        writeFile(path("c.dll"_s), failingPlugin("stopped crash"));
        const Outcome crash = run("run --board 4 --app-dir %1 --plugins %1");
        QVERIFY(crash.status != 0);
        const QString lastStep = crash.output.filter(" ms  "_s).last();
        QVERIFY2(lastStep.endsWith("stops c.dll"_s), qPrintable(lastStep));
    }

private:
    /// Runs a shell script whose arguments are ovapp-host and its arguments.
    void startWithFakeTools(QProcess& shell, const char* arguments, const QByteArray& script) const
    {
        Tools::findIn(QStringLiteral(FAKE_TOOL_DIR));
        shell.start("/bin/sh"_s,
                    QStringList{"-c"_s, QString::fromLatin1(script), "sh"_s, hostPath} +
                        words(arguments, _directory->path()));
    }

    /// Returns the content of a plug-in that fails in the given way.
    static QByteArray failingPlugin(const QByteArray& way)
    {
        const QByteArray placeholder = "the stage and the failure";
        return contentOf(QStringLiteral(FAILING_PLUGIN))
            .replace(placeholder, way.leftJustified(placeholder.size()));
    }
    static QJsonObject jsonOf(const Outcome& outcome)
    {
        return QJsonDocument::fromJson(outcome.output.join(u'\n').toUtf8()).object();
    }
};

QTEST_GUILESS_MAIN(tst_host)
#include "tst_host.moc"
