#include <support/Host.h>
#include <support/SampleSession.h>

#include <ovdoc/Document.h>
#include <ovdoc/Transaction.h>
#include <registries/ExtendPluginInfo.h>
#include <registries/ExtendPluginRegistry.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTcpSocket>
#include <QtTest>

#include <ctime>
#include <memory>

#ifdef Q_OS_UNIX
#include <sys/resource.h>
#include <sys/socket.h>
#endif

using App::PluginLoader;

namespace {

/// Sends a request to the TCP trigger and returns the data received until there are `lines` lines
/// or the connection is closed.
QByteArrayList answers(QTcpSocket& client, const QByteArray& request, int lines)
{
    client.write(request);
    QByteArray text;
    const auto isDone = [&] {
        text += client.readAll();
        return text.count('\n') >= lines || client.state() == QTcpSocket::UnconnectedState;
    };
    if (!QTest::qWaitFor(isDone))
        return {};
    return text.trimmed().split('\n');
}

} // namespace

class tst_samples : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void pluginsCanBeRestarted()
    {
        const SampleSession samples;
        App::Application& application = samples.application();
        const QString path = samples.path("piece.ovdoc"_s);
        auto& extensions = App::ExtendPluginRegistry::instance();
        for (const char* totals :
             {"1 documents and 2 transactions", "2 documents and 4 transactions"}) {
            QCOMPARE(extensions.count(), 1);
            QCOMPARE(extensions.infoAt(0)->name(), "relief-engraving"_s);
            const std::unique_ptr<Doc::Document> document(application.newDocument(path));
            Doc::Transaction transaction;
            application.notifyTransactionListeners(document.get(), &transaction);
            application.notifyTransactionListeners(document.get(), &transaction);
            application.closeDocument();
            PluginLoader::unloadPlugins();
            QCOMPARE(samples.console.lines.last(),
                     QByteArray("ProductionCounter::stop: ") + totals + " in all runs");
            QCOMPARE(extensions.count(), 0);
            PluginLoader::loadPlugins(true);
        }
        App::CommInfoRegistry::instance()->start();
        QCOMPARE(QDir(samples.path("."_s)).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
                 words("ovapp.ini ProductionCounter TcpTrigger"));
    }

    void tcpTriggerAnswersClients()
    {
        const SampleSession samples;
        const quint16 port = samples.startChannels();
        QVERIFY2(port != 0, samples.console.lines.last());
        const auto connected = [port] {
            auto client = std::make_unique<QTcpSocket>();
            client->connectToHost(QHostAddress::LocalHost, port);
            client->waitForConnected(1000);
            return client;
        };

#ifdef Q_OS_UNIX
        // If no descriptor is free, a client waits without using processor time.
        const auto waiting = connected();
        QFile lowestFree("/dev/null"_s);
        QVERIFY(lowestFree.open(QIODevice::ReadOnly));
        rlimit limit;
        QCOMPARE(getrlimit(RLIMIT_NOFILE, &limit), 0);
        const rlimit none{static_cast<rlim_t>(lowestFree.handle()), limit.rlim_max};
        lowestFree.close();
        QCOMPARE(setrlimit(RLIMIT_NOFILE, &none), 0);
        const std::clock_t before = std::clock();
        QTest::qWait(500);
        const std::clock_t spent = std::clock() - before;
        setrlimit(RLIMIT_NOFILE, &limit);
        QVERIFY(spent < CLOCKS_PER_SEC / 20);
        QVERIFY(samples.console.lines.last().startsWith("warning: TriggerChannel::acceptConn"));
        QCOMPARE(answers(*waiting, "status\n", 1).size(), 1);
        // The connection is closed when the client shuts down its sending side.
        QCOMPARE(::shutdown(static_cast<int>(waiting->socketDescriptor()), SHUT_WR), 0);
        QTRY_COMPARE(waiting->state(), QTcpSocket::UnconnectedState);
#endif
        const QByteArray tooLong = R"({"error":"the line is too long"})";
        for (const QByteArray& request : {QByteArray(257, 'x') + '\n', QByteArray(300, 'x'),
                                          QByteArray(300, ' ') + "status\n"}) {
            QCOMPARE(answers(*connected(), request, 2), QByteArrayList{tooLong});
        }
        const QByteArray many = QByteArray("status\n").repeated(2000);
        QCOMPARE(answers(*connected(), many, 2000).size(), 2000);

        std::vector<std::unique_ptr<QTcpSocket>> clients;
        for (int i = 0; i < 8; ++i) {
            clients.push_back(connected());
            const QByteArrayList lines = answers(*clients.back(), QByteArray(256, 'x') + "\n", 1);
            QVERIFY(lines.value(0).contains("unknown request"));
        }
        QVERIFY(answers(*connected(), "", 2).value(0).contains("too many clients"));

        QTcpSocket& client = *clients.back();
        QByteArrayList lines = answers(client, "status\r\nSTATUS\n", 2);
        QCOMPARE(lines.value(0), QByteArray(R"({"document":null,"finished":0,"target":0})"));
        QVERIFY(lines.value(1).contains("error"));
        const QString path = samples.write(
            "piece.ovdoc"_s,
            R"({"format": "ovdoc", "version": 1, "printCount": {"finished": 3, "target": 8}})");
        const std::unique_ptr<Doc::Document> document(samples.application().openDocument(path));
        const QString status = R"({"document":"%1","finished":3,"target":8})"_s.arg(path);
        QCOMPARE(answers(client, "status\n", 1), QByteArrayList{status.toUtf8()});

        App::CommInfoRegistry::instance()->stop();
        QTRY_COMPARE(client.state(), QTcpSocket::UnconnectedState);
        QCOMPARE(connected()->state(), QTcpSocket::UnconnectedState);
        samples.application().closeDocument();
    }

    void explanationOfEachVerdict()
    {
        const QTemporaryDir parent;
        const QDir directory(parent.filePath("\u00c4 \u65e5\u672c"_s));
        const QString samples = QStringLiteral(SAMPLE_PLUGIN_DIR "/");
        const QString others = QStringLiteral(OTHER_PLUGIN_DIR "/");
        const struct
        {
            QString file;
            QString from;
            const char* verdict;
            const char* explanation;
        } rows[] = {
            {"accepted.dll"_s, samples + "rotary-axis.dll"_s, "accepted", "accepted"},
            {"board.dll"_s, samples + "relief-engraving.dll"_s, "other-board",
             "supportedBoardTypes() is 0x5"},
            {"damaged.dll"_s, samples + "rotary-axis.dll"_s, "no-plugin", "truncated"},
            {"interface.dll"_s, others + "OtherInterface.dll"_s, "no-interface", "Q_INTERFACES"},
            {"no-id.dll"_s, others + "PluginWithoutIdentifier.dll"_s, "no-identifier",
             "pluginID() is 0"},
            {"program.dll"_s, QStringLiteral(OVAPP_HOST), "no-plugin", "Qt cannot load it"}};
        for (const auto& row : rows)
            writeFile(directory.filePath(row.file), contentOf(row.from));
        // Short enough for Qt 6 too, which does not need the sections after the code and the data.
        QVERIFY(QFile::resize(directory.filePath("damaged.dll"_s), 4096));

        const QStringList command = words("plugins --json --board 2 --app-dir %1 --plugins %1")
                                        .replaceInStrings("%1"_s, directory.path());
        const Outcome outcome = runHost(command);
        QCOMPARE(outcome.status, 1);
        const QByteArray json = outcome.output.join(u'\n').toUtf8();
        const auto plugins = QJsonDocument::fromJson(json).object().value("plugins"_s).toArray();
        QCOMPARE(plugins.size(), 6);
        for (int i = 0; i < 6; ++i) {
            const QJsonObject plugin = plugins.at(i).toObject();
            const QString file = directory.filePath(rows[i].file);
            QCOMPARE(plugin.value("file"_s).toString(), file);
            QCOMPARE(plugin.value("verdict"_s).toString(), QLatin1String(rows[i].verdict));
            const QString explanation = plugin.value("explanation"_s).toString();
            QVERIFY2(explanation.contains(QLatin1String(rows[i].explanation)),
                     qPrintable(explanation));
            QCOMPARE(plugin.value("accepted"_s).toBool(), i == 0);
            QVERIFY(i < 2 || QFile::remove(file));
        }
        // The files that cannot be used have been removed.
        QCOMPARE(runHost(command).status, 0);
    }

    void defaultSession()
    {
#ifdef Q_OS_LINUX
        const QTemporaryDir data;
        qputenv("XDG_DATA_HOME", QFile::encodeName(data.path()));
        const Outcome outcome = runHost({"run"_s});
        qunsetenv("XDG_DATA_HOME");
        QCOMPARE(outcome.status, 0);
        const QString output = outcome.output.join(u'\n');
        for (const char* event : {"production-counter.dll is accepted",
                                  "rotary-axis.dll is refused", "opened: coaster.ovdoc"})
            QVERIFY2(output.contains(QLatin1String(event)), event);
        QVERIFY(QFile::exists(data.filePath("ovapp-host/ovapp.ini"_s)));
#else
        QSKIP("The session would write to the user's data directory");
#endif
    }

    void profileOfEachPlugin()
    {
        const QTemporaryDir directory;
        const Outcome outcome =
            runHost(words("plugins --profile --board 1 --app-dir %1 --plugins %2")
                        .replaceInStrings("%1"_s, directory.filePath("made"_s))
                        .replaceInStrings("%2"_s, QStringLiteral(SAMPLE_PLUGIN_DIR)));
        QCOMPARE(outcome.errors.size(), 1);
        QVERIFY(outcome.errors.first().contains("did not exist and was created"_s));
        QCOMPARE(outcome.status, 0);
        QCOMPARE(outcome.output.size(), 5);
        QVERIFY(outcome.output.first().contains("LOAD/MS  START/MS  STOP/MS  VERDICT"_s));
        // This plug-in was started, so it has settings; the one for another board was not.
        QVERIFY(QFile::exists(directory.filePath("made/ProductionCounter"_s)));
        const QRegularExpression accepted("^production-counter.dll +production counter +0x"_s);
        QVERIFY2(outcome.output.at(1).contains(accepted), qPrintable(outcome.output.at(1)));
        const QRegularExpression other("^rotary-axis.dll +- .* - +- +for another board: "_s);
        QVERIFY2(outcome.output.at(3).contains(other), qPrintable(outcome.output.at(3)));
    }
};

QTEST_GUILESS_MAIN(tst_samples)
#include "tst_samples.moc"
