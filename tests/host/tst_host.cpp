#include <support/Files.h>
#include <support/Host.h>

#include <netdiag/SystemTools.h>
#include <ovcore/Version.h>
#include <system/LibraryFile.h>

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

    void documentsThatCannotBeOpened()
    {
        writeFile(path("truncated"_s), "{\"format\": \"ovdoc\", \"ver");
        const std::pair<QString, QString> rows[] = {
            {"truncated"_s, "truncated': it is not a document: invalid JSON at line 1, column"_s},
            {"a\nb\u202e\u2028\U0001f600"_s,
             "a\\x0ab\\x202e\\x2028\U0001f600': there is no such file"_s}};
        for (const auto& [name, error] : rows) {
            QProcess host;
            host.setProcessChannelMode(QProcess::MergedChannels);
            host.start(hostPath,
                       {"run"_s, "--app-dir"_s, _directory->path(), "--document"_s, path(name)});
            QStringList output = outcomeOf(host).output;
            QCOMPARE(host.exitCode(), 1);
            const QString last = output.takeLast();
            QVERIFY2(last.startsWith("ovapp-host: cannot open '"_s) && last.contains(error),
                     qPrintable(last));
            QVERIFY2(output.last().endsWith("destruct application."_s), qPrintable(output.last()));
        }
    }

    void usage_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("status");
        const auto row = [](const QStringList& arguments, const QString& text, int status = 2) {
            QTest::addRow("'%s'", qPrintable(arguments.join("' '"_s)))
                << arguments << text << status;
        };
        row({}, "expected a command"_s);
        row(words("dance"), "unknown command 'dance'"_s);
        row(words("run --fast"), "unknown option 'fast'"_s);
        row(words("run --document"), "document"_s);
        row(words("run a.ovdoc"), "unexpected argument 'a.ovdoc'"_s);
        row({"run"_s, "--app-dir"_s, QString()}, "--app-dir: expected a directory"_s);
        row(words("run --board left"), "--board: 'left'"_s);
        row(words("run --plugins missing"), "--plugins: "_s);
        row(words("ping"), "expected one host, got 0"_s);
        row(words("trace a b"), "expected one host, got 2"_s);
        for (const char* host : {"", "-f", "/f", "a b", "a\x01"})
            row({"ping"_s, "--"_s, QLatin1String(host)}, "is not a host name"_s);
        row(words("plugins --timeout 0"), "--timeout: '0'"_s);
        // Its milliseconds do not fit into an int.
        row(words("plugins --timeout 2147484"), "--timeout: '2147484'"_s);
        row(words("ping a --count -1"), "--count: '-1'"_s);
        row(words("trace a --max-hops 0"), "--max-hops: '0'"_s);
        row(words("--help"), "run a whole session"_s, 0);
        row(words("run --help"), executableName() + " run [options]"_s, 0);
        row(words("--version"),
            "%1 %2 (Qt %3)"_s.arg(executableName(),
                                  QString::fromUtf8(Core::Version::versionString()),
                                  QLatin1String(qVersion())),
            0);
    }

    void usage()
    {
        QFETCH(QStringList, arguments);
        QFETCH(int, status);
        QFETCH(QString, text);
        const Outcome outcome = runHost(arguments);
        QCOMPARE(outcome.status, status);
        const QStringList& printed = status == 0 ? outcome.output : outcome.errors;
        const QStringList& silent = status == 0 ? outcome.errors : outcome.output;
        QVERIFY2(printed.join(u'\n').contains(text), qPrintable(printed.join(u'\n')));
        QCOMPARE(silent, QStringList());
        if (status != 0) {
            QCOMPARE(printed.size(), 1);
            QVERIFY(printed.first().startsWith("ovapp-host: "_s));
        }
    }

    void manPage()
    {
        const QString page =
            QString::fromUtf8(contentOf(QStringLiteral(OVAPP_DOCS "/ovapp-host.1"))).remove(u'\\');
        for (const QString& command : words("run plugins ping trace")) {
            const QString help = runHost({command, "--help"_s}).output.join(u'\n');
            auto option = QRegularExpression("--[a-z-]+"_s).globalMatch(help);
            QVERIFY(option.hasNext());
            while (option.hasNext()) {
                const QString name = option.next().captured();
                QVERIFY2(page.contains(QRegularExpression(name + "\\b"_s)), qPrintable(name));
            }
        }
    }

    void settingsThatCannotBeWritten()
    {
        writeFile(path("file"_s));
        QVERIFY(QDir().mkpath(path("locked/ovapp.ini.lock"_s)));
        const std::pair<QString, QString> reasons[] = {
            {"file/below"_s, "no file can be created in its directory"_s},
            {"locked"_s, "its lock file, ovapp.ini.lock, is in use or cannot be removed"_s}};
        for (const auto& [name, reason] : reasons) {
            const Outcome outcome = runHost({"run"_s, "--app-dir"_s, path(name)});
            QCOMPARE(outcome.status, 0);
            QCOMPARE(
                outcome.errors,
                QStringList("ovapp-host: warning: '%1/ovapp.ini' cannot be written: %2; "
                            "settings will be lost, unless --app-dir names another directory"_s.arg(
                                path(name), reason)));
        }
    }

    void networkTools_data()
    {
        QTest::addColumn<bool>("installed");
        QTest::addColumn<QString>("arguments");
        QTest::addColumn<int>("status");
        QTest::addColumn<QStringList>("output");
        QTest::addColumn<QStringList>("errors");
        const QStringList none;
        const auto missing = [](const char* tool, const char* package) {
            return QStringList("ovapp-host: cannot start the system's %1 tool; on Debian, "
                               "install %2"_s.arg(QLatin1String(tool), QLatin1String(package)));
        };
        const auto row = [](const char* name, bool installed, const char* arguments, int status,
                            const QStringList& output, const QStringList& errors) {
            QTest::newRow(name) << installed << arguments << status << output << errors;
        };
        row("answered", true, "ping --count 0 here", 0, words("here"), none);
        const QStringList summary = words("endless summary");
        row("until the count", true, "ping --count 1 endless", 0, summary, none);
        row("not answered", true, "ping unanswered", 1, words("unanswered"),
            {"ovapp-host: complaint"_s});
        row("no ping", false, "ping here", 1, none, missing("ping", "iputils-ping"));
        const QStringList hops{QLatin1String(SystemTools::tracerouteMaxHops)};
        row("traced", true, "trace --max-hops 1 slow", 0,
            hops + words("1 slow complaint") + QStringList(" 1  later"_s), none);
        row("not traced", true, "trace here", 1, hops + words("10 here complaint"),
            {"ovapp-host: no hop to 'here' was found"_s});
        row("no traceroute", false, "trace here", 1, none, missing("traceroute", "traceroute"));
    }

    void networkTools()
    {
        QFETCH(bool, installed);
        QFETCH(QString, arguments);
        if (arguments.contains("endless"_s) && !SystemTools::pingRunsUntilStopped)
            QSKIP("The tool of this system ends by itself");
        const char* tool =
            arguments.startsWith("ping"_s) ? SystemTools::ping : SystemTools::traceroute;
        if (!installed && Tools::isAlwaysFound(QLatin1String(tool)))
            QSKIP("This system's own tool cannot be hidden");
        Tools::findIn(installed ? QStringLiteral(FAKE_TOOL_DIR)
                                : QCoreApplication::applicationDirPath());
        const QString strayReport =
            QFileInfo(QStringLiteral(OVAPP_HOST)).path() + "/traceroute.out"_s;
        QFile::remove(strayReport);
        QElapsedTimer elapsed;
        elapsed.start();
        const Outcome outcome = runHost(words(qPrintable(arguments)));
        // A trace ends with its tool, not when the output has not changed for a while. The tool
        // pings for 3.5 s by default.
        QVERIFY(elapsed.elapsed() < 6500);
        QVERIFY(!QFile::exists(strayReport));
        QTEST(outcome.status, "status");
        QTEST(outcome.output, "output");
        QTEST(outcome.errors, "errors");
    }

#ifdef Q_OS_UNIX
    void interrupt_data()
    {
        QTest::addColumn<QString>("arguments");
        QTest::addColumn<QString>("readyOutput"); ///< when the signal is sent
        QTest::addColumn<int>("signalSent");
        QTest::addColumn<QString>("lastLine");
        QTest::addColumn<int>("status");
        QTest::addColumn<QStringList>("errors");
        const QStringList interrupted("ovapp-host: interrupted"_s);
        // The signals reach the host only.
        QTest::newRow("ping") << "ping --count 0 endless"
                              << "endless" << SIGTERM << "summary" << 0 << QStringList();
        QTest::newRow("ping without a reply") << "ping --count 0 late"
                                              << "late" << SIGINT << "summary" << 1 << interrupted;
        QTest::newRow("trace") << "trace endless"
                               << "endless" << SIGINT << "summary" << 1 << interrupted;
        // There is about one heartbeat per second.
        QTest::newRow("session") << "run --stay --app-dir %1 --plugins %1"
                                 << "[0-9]{4} ms  heartbeat channel +is alive" << SIGTERM
                                 << "destruct application." << 0 << QStringList();
    }

    /// SIGHUP is ignored, as by `nohup`.
    void interrupt()
    {
        QFETCH(QString, arguments);
        QFETCH(QString, readyOutput);
        QFETCH(int, signalSent);
        QFETCH(QString, lastLine);
        Tools::findIn(QStringLiteral(FAKE_TOOL_DIR));
        QProcess host;
        host.start("/bin/sh"_s,
                   QStringList{"-c"_s, R"(trap "" HUP; exec "$@")"_s, "sh"_s, hostPath} +
                       words(qPrintable(arguments), _directory->path()));
        while (!QString::fromUtf8(host.peek(100000)).contains(QRegularExpression(readyOutput)))
            QVERIFY(host.waitForReadyRead());
        const auto pid = static_cast<pid_t>(host.processId());
        QCOMPARE(::kill(pid, SIGHUP), 0);
        QVERIFY(!host.waitForFinished(200));
        QElapsedTimer elapsed;
        elapsed.start();
        QCOMPARE(::kill(pid, signalSent), 0);
        const Outcome outcome = outcomeOf(host);
        QTEST(outcome.status, "status");
        QTEST(outcome.errors, "errors");
        QVERIFY(elapsed.elapsed() < 2000);
        QVERIFY2(outcome.output.last().endsWith(lastLine), qPrintable(outcome.output.last()));
        QVERIFY(outcome.output.filter("is alive"_s).size() < 10);
    }

    void unwritableOutput_data()
    {
        QTest::addColumn<QString>("output");
        QTest::addColumn<QString>("arguments");
        QTest::newRow("full") << ">/dev/full"
                              << "--version";
        for (const char* arguments :
             {"ping --count 0 late", "trace late", "run --stay --app-dir %1 --plugins %1"})
            QTest::newRow(arguments) << "| :" << arguments;
    }

    /// The host reports that, and leaves neither temporary files nor processes.
    void unwritableOutput()
    {
        QFETCH(QString, output);
        QFETCH(QString, arguments);
        Tools::findIn(QStringLiteral(FAKE_TOOL_DIR));
        const QTemporaryDir temporary;
        QProcess shell;
        // Qt creates the latter among the temporary files otherwise.
        shell.setEnvironment(
            QProcess::systemEnvironment() +
            QStringList{"TMPDIR="_s + temporary.path(), "XDG_RUNTIME_DIR="_s + _directory->path()});
        shell.setWorkingDirectory(_directory->path());
        shell.start("/bin/sh"_s,
                    QStringList{"-c"_s, R"(("$@"; echo $? >&2) )"_s + output, "sh"_s, hostPath} +
                        words(qPrintable(arguments), _directory->path()));
        QCOMPARE(outcomeOf(shell).errors,
                 QStringList({"ovapp-host: cannot write to standard output"_s, "1"_s}));
        QVERIFY(QDir(temporary.path()).isEmpty());
        for (const QString& process : QDir("/proc"_s).entryList(QDir::Dirs)) {
            QVERIFY2(QFile::symLinkTarget("/proc/"_s + process + "/cwd"_s) != _directory->path(),
                     "a process is still running");
        }
    }
#endif

    void verdictsOnPlugins()
    {
        // Sanitizers would turn the crashes into exits.
        for (const char* options : {"ASAN_OPTIONS", "TSAN_OPTIONS"})
            qputenv(options, "handle_segv=0");
        _directory.emplace(QDir::temp().filePath("\u00c4 \u65e5\u672c-XXXXXX"_s));
        const std::tuple<const char*, QByteArray, const char*, const char*> rows[] = {
            {"accepted", failingPlugin("started wait"), "accepted", "accepted"},
            {"board", builtPlugin("PluginB"), "other-board", "supportedBoardTypes() is 0x2"},
            {"crash", failingPlugin("loaded crash"), "crashed", "while it was loaded"},
            // Short enough for Qt 6 too, which does not need the sections after code and data.
            {"damaged", failingPlugin("").left(4096), "no-plugin", "truncated"},
            {"exit", failingPlugin("unloaded _exit"), "exited",
             "exit code 0 while it was unloaded"},
            {"fork", failingPlugin("started fork"), "accepted", "accepted"},
            {"hang", failingPlugin("stopped hang"), "timed-out",
             "4 s, and was ended while it was stopped"},
            {"interface", builtPlugin("OtherInterface"), "no-interface", "Q_INTERFACES"},
            {"no-id", builtPlugin("PluginWithoutIdentifier"), "no-identifier", "pluginID() is 0"},
            {"overflow", failingPlugin("started overflow"), "crashed", "while it was started"},
            {"program", contentOf(QStringLiteral(OVAPP_HOST)), "no-plugin", "Qt cannot load it"},
            {"symbol", failingPlugin("").replace("10PluginInfoC", "10PluginInfoX"),
             Tools::isWine() ? "crashed" : "no-plugin",
             Tools::isWine() ? "while its queries were called" : "Qt cannot load it"},
            {"throw", failingPlugin("queried throw"), "exception",
             "pluginID() threw an exception: test exception"}};
        const auto pathOf = [this](const char* name) {
            return path(QLatin1String(name) + ".dll"_s);
        };
        for (const auto& row : rows)
            writeFile(pathOf(std::get<0>(row)), std::get<1>(row));
        const QStringList command = words(
            "plugins --profile --json --timeout 4 --board 0X80000004 --app-dir %1 --plugins %1",
            _directory->path());
        const Outcome outcome = runHost(command);
        QCOMPARE(outcome.status, 1);
        QCOMPARE(outcome.errors.last(), "ovapp-host: 10 of 13 plug-in files cannot be used"_s);
        const QJsonObject json = jsonOf(outcome);
        QCOMPARE(json.value("directory"_s).toString(), _directory->path());
        QCOMPARE(json.value("board"_s).toInt(), std::numeric_limits<int>::min() + 4);
        const QJsonArray plugins = json.value("plugins"_s).toArray();
        QCOMPARE(plugins.size(), 13);
        for (int i = 0; i < plugins.size(); ++i) {
            const QJsonObject plugin = plugins.at(i).toObject();
            const auto& [name, content, expectedVerdict, expectedExplanation] = rows[i];
            QCOMPARE(plugin.value("file"_s).toString(), pathOf(name));
            const QString verdict = QLatin1String(expectedVerdict);
            QCOMPARE(plugin.value("verdict"_s).toString(), verdict);
            QCOMPARE(plugin.value("accepted"_s).toBool(), verdict == "accepted"_s);
            const QString explanation = plugin.value("explanation"_s).toString();
            QVERIFY2(explanation.contains(QLatin1String(expectedExplanation)),
                     qPrintable(explanation));
            QVERIFY(i < 2 || QFile::remove(pathOf(name)));
        }
        // The files that cannot be used have been removed.
        const Outcome accepted = runHost(command);
        QCOMPARE(accepted.status, 0);
        QCOMPARE(accepted.errors, words("loaded queried queried started stopped unloaded"));
        QVERIFY(QFile::remove(path("board.dll"_s)));
        const QJsonObject plugin = jsonOf(accepted).value("plugins"_s).toArray().at(0).toObject();
        QCOMPARE(plugin.value("identifier"_s).toString(), "0x1f"_s);
        QVERIFY(plugin.value("start_ms"_s).toDouble() > 300);
        QVERIFY(plugin.value("stop_ms"_s).toDouble() < 300);

        const QStringList tableCommand = command.filter(QRegularExpression("^(?!--json)"_s));
        const QString row = runHost(tableCommand).output.last();
        const QRegularExpression expected(
            "^accepted.dll  Failing  0x1f        0x4     +[0-9.]+ +[3-9][0-9]{2}\\.[0-9]+"
            " +[0-9]{1,2}\\.[0-9]+  +accepted$"_s);
        QVERIFY2(row.contains(expected), qPrintable(row));

        QVERIFY(QFile::remove(path("accepted.dll"_s)));
        const Outcome empty = runHost(tableCommand);
        QCOMPARE(empty.status, 0);
        QVERIFY(empty.output.join(u'\n').contains(_directory->path()));
    }

    void remainingRegistrations()
    {
        for (const char* options : {"ASAN_OPTIONS", "TSAN_OPTIONS"})
            qputenv(options, "handle_segv=0");
        writeFile(path("registers.dll"_s), failingPlugin("registers"));
        int listenerKinds = 0;
#ifdef Q_OS_LINUX
        listenerKinds = 9;
        for (int kind = 0; kind < listenerKinds; ++kind) {
            const QByteArray way = "listens " + QByteArray::number(kind);
            writeFile(path(QString::fromLatin1(way) + ".dll"_s), failingPlugin(way));
        }
#endif
        const QStringList command = words(
            "plugins --profile --json --board 4 --app-dir %1 --plugins %1", _directory->path());
        const QJsonArray plugins = jsonOf(runHost(command)).value("plugins"_s).toArray();
        QCOMPARE(plugins.size(), listenerKinds + 1);
        for (int i = 0; i < listenerKinds; ++i) {
            const QString explanation = plugins.at(i).toObject().value("explanation"_s).toString();
            QVERIFY2(explanation.endsWith(
                         "while a listener was called that stop() had left registered"_s),
                     qPrintable(explanation));
        }
        const QJsonObject registers = plugins.at(listenerKinds).toObject();
        QCOMPARE(registers.value("verdict"_s).toString(), "incomplete-stop"_s);
        QCOMPARE(registers.value("explanation"_s).toString(),
                 "cannot be used: stop() leaves objects registered (channels: 1, extensions: 2)"_s);
    }

    void givenFiles()
    {
        for (const QString& name : words("a/my.dll b/my.dll b/other.so c.dll"))
            writeFile(path(name), failingPlugin(""));
        writeFile(path("text.dll"_s), "text");
        QVERIFY(QDir::setCurrent(path("a"_s)));
        const QStringList command = words("plugins --board 4 --app-dir %1", _directory->path());
        for (const auto& [file, error] :
             {std::pair("missing.dll"_s, "'missing.dll' does not exist"_s),
              {"../b"_s, "'../b' is a directory; use --plugins for it"_s},
              {"../a/my.dll"_s, "'../a/my.dll' is given twice"_s}}) {
            const Outcome outcome = runHost(command + QStringList{"my.dll"_s, file});
            QCOMPARE(outcome.status, 2);
            QCOMPARE(outcome.output, QStringList());
            QCOMPARE(outcome.errors, QStringList("ovapp-host: "_s + error));
        }
        const Outcome outcome =
            runHost(command + words("my.dll ../b/my.dll ../b/other.so ../text.dll"));
        QCOMPARE(outcome.status, 1);
        QCOMPARE(outcome.output.size(), 5);
        for (const char* name : {"my.dll", "../b/my.dll", "../b/other.so"})
            QCOMPARE(outcome.output
                         .filter(QRegularExpression("^%1 .* accepted$"_s.arg(
                             QRegularExpression::escape(QLatin1String(name)))))
                         .size(),
                     1);
        QStringList errors = outcome.errors;
        for (const char* printed : {"loaded", "queried", "unloaded"})
            errors.removeAll(QLatin1String(printed));
        QCOMPARE(errors,
                 QStringList({"ovapp-host: warning: '../b/other.so' would be skipped in a plug-in "
                              "directory: the suffix of plug-in files is .dll"_s,
                              "ovapp-host: warning: my.dll, ../b/my.dll, ../b/other.so have the "
                              "same identifier, '0x1f'"_s,
                              "ovapp-host: warning: my.dll, ../b/my.dll, ../b/other.so have the "
                              "same name, 'Failing'"_s,
                              "ovapp-host: 1 of 4 plug-in files cannot be used"_s}));
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
            const Outcome outcome = runHost(
                words(command) + words("--board 1 --app-dir %1 --plugins %1", _directory->path()));
            QCOMPARE(outcome.errors, QStringList());
            QCOMPARE(outcome.status, 0);
            QVERIFY(!outcome.output.filter(QRegularExpression("below.dll .*accepted"_s)).isEmpty());
        }
        qputenv("QT_QPA_PLATFORM", "none such");
        const Outcome outcome = run("plugins --board 1 --app-dir %1 %1/below.dll");
        qunsetenv("QT_QPA_PLATFORM");
        QCOMPARE(outcome.status, 1);
        QVERIFY(outcome.errors.join(u'\n').contains("platform plugin"_s));
    }
#endif

#ifdef Q_OS_UNIX
    void skippedFiles()
    {
        for (const QString& name : words("below/my.so notes.txt .hidden.so closed/none"))
            writeFile(path(name));
        QVERIFY(QFile::link(_directory->path(), path("below/loop"_s)));
        QVERIFY(QFile::setPermissions(path("closed"_s), {}));
        const bool canRead = QFileInfo(path("closed"_s)).isReadable();
        const Outcome outcome = run("plugins --app-dir %1 --plugins %1");
        QVERIFY(QFile::setPermissions(path("closed"_s),
                                      QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
        QCOMPARE(outcome.status, 0);
        QStringList expected;
        const auto add = [&](const QString& name, const QString& reason) {
            expected += "ovapp-host: warning: '%1' is skipped: %2"_s.arg(path(name), reason);
        };
        add("below/my.so"_s, "the suffix of plug-in files is .dll"_s);
        // Root can read everything.
        if (!canRead)
            add("closed"_s, "the directory cannot be read"_s);
        QCOMPARE(outcome.errors, expected);
    }
#endif

    void pluginsInSession()
    {
        writeFile(path("a.dll"_s), failingPlugin("started throw"));
        writeFile(path("b.dll"_s), failingPlugin("queried throw"));
#ifdef Q_OS_UNIX
        // Opening it would block.
        QCOMPARE(::mkfifo(QFile::encodeName(path("pipe"_s)).constData(), 0600), 0);
        QVERIFY(QFile::link("pipe"_s, path("c.dll"_s)));
#else
        writeFile(path("c.dll"_s), "text");
#endif
        writeFile(path("d.dll"_s), failingPlugin("started quit"));
        const Outcome outcome = run("run --board 4 --app-dir %1 --plugins %1");
        QCOMPARE(outcome.errors, QStringList("ovapp-host: a plug-in has ended the event loop"_s));
        QCOMPARE(outcome.status, 1);
        QStringList lines = outcome.output.filter(".dll"_s);
        lines.replaceInStrings(QRegularExpression("^ *[0-9]+ ms  (host +)?"_s), QString());
        lines = lines.filter(QRegularExpression("^(?!log)"_s));
        QCOMPARE(
            lines,
            QStringList({"loads and starts a.dll (1 of 4)"_s, "loads and starts b.dll (2 of 4)"_s,
                         "loads and starts c.dll (3 of 4)"_s, "loads and starts d.dll (4 of 4)"_s,
                         "a.dll is accepted: start() threw an exception: test exception"_s,
                         "b.dll is refused: pluginID() threw an exception: test exception"_s,
                         "c.dll is refused: "_s + System::libraryFileError(path("c.dll"_s)),
                         "d.dll is accepted"_s, "stops and unloads d.dll"_s,
                         "stops and unloads a.dll"_s}));
        // The output of the plug-ins shows that each one is unloaded in its own step.
        QCOMPARE(outcome.output.filter("unloaded"_s).size(), 3);
    }

    void crashInSession()
    {
        writeFile(path("failing.dll"_s), failingPlugin("stopped crash"));
        const Outcome outcome = run("run --board 4 --app-dir %1 --plugins %1");
        QVERIFY(outcome.status != 0);
        QVERIFY2(
            outcome.output.filter(" ms  "_s).last().endsWith("stops and unloads failing.dll"_s),
            qPrintable(outcome.output.last()));
    }

private:
    static QString executableName()
    {
        return QFileInfo(QStringLiteral(OVAPP_HOST)).completeBaseName();
    }

    /// Returns the content of a plug-in that fails in the given way.
    static QByteArray failingPlugin(const QByteArray& way)
    {
        const QByteArray placeholder = "the stage and the failure";
        return contentOf(QStringLiteral(FAILING_PLUGIN))
            .replace(placeholder, way.leftJustified(placeholder.size()));
    }
    static QByteArray builtPlugin(const char* target)
    {
        return contentOf(QStringLiteral(BUILT_PLUGIN_DIR "/%1.dll").arg(QLatin1String(target)));
    }

    static QJsonObject jsonOf(const Outcome& outcome)
    {
        return QJsonDocument::fromJson(outcome.output.join(u'\n').toUtf8()).object();
    }
};

QTEST_GUILESS_MAIN(tst_host)
#include "tst_host.moc"
