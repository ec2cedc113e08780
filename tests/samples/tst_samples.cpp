#include <support/ConsoleRecorder.h>
#include <support/Literals.h>
#include <support/Session.h>

#include <ovdoc/Document.h>
#include <ovdoc/Transaction.h>
#include <plugins/PluginLoader.h>
#include <registries/CommInfoRegistry.h>
#include <registries/ExtendPluginInfo.h>
#include <registries/ExtendPluginRegistry.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTcpSocket>
#include <QtTest>

#include <memory>

using App::PluginLoader;

namespace {

/// A session with the sample plug-ins loaded and started, where the TCP trigger takes a free port.
struct SampleSession
{
    SampleSession()
    {
        QDir(session.path(QString())).mkdir("TcpTrigger"_s);
        session.write("TcpTrigger/TcpTrigger.ini"_s, "[Server]\nport=0\n");
        Core::Settings::instance().setPluginDirPath(QStringLiteral(SAMPLE_PLUGIN_DIR));
        PluginLoader::loadPlugins(true);
    }
    SampleSession(const SampleSession&) = delete;
    SampleSession& operator=(const SampleSession&) = delete;
    ~SampleSession() { PluginLoader::unloadPlugins(); }

    ConsoleRecorder console;
    Session session;
};

/// What a client of the TCP trigger reads until it has `lines` lines or is sent away.
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
    void productionCounter()
    {
        const SampleSession samples;
        const QString path = samples.session.path("piece.ovdoc"_s);
        const auto runOnce = [&] {
            App::Application& application = samples.session.application();
            const std::unique_ptr<Doc::Document> document(application.newDocument(path));
            Doc::Transaction transaction;
            application.notifyTransactionListeners(document.get(), &transaction);
            application.notifyTransactionListeners(document.get(), &transaction);
            application.closeDocument();
            PluginLoader::unloadPlugins();
            return samples.console.lines.last();
        };
        QCOMPARE(runOnce(), "ProductionCounter::stop: 1 documents and 2 transactions in all runs");
        PluginLoader::loadPlugins(true);
        QCOMPARE(runOnce(), "ProductionCounter::stop: 2 documents and 4 transactions in all runs");
    }

    void extension()
    {
        const SampleSession samples;
        const auto& extensions = App::ExtendPluginRegistry::instance();
        QCOMPARE(extensions.count(), 1);
        QCOMPARE(App::ExtendPluginRegistry::instance().infoAt(0)->name(), "relief-engraving"_s);
        PluginLoader::unloadPlugins();
        QCOMPARE(extensions.count(), 0);
    }

    void tcpTrigger()
    {
        const SampleSession samples;
        App::CommInfoRegistry::instance()->start();
        const QByteArray started = samples.console.lines.last();
        const int space = started.lastIndexOf(' ');
        QVERIFY2(started.startsWith("TriggerChannel::start: listening on port "), started);
        const auto port = started.mid(space + 1).toUShort();

        QTcpSocket client;
        client.connectToHost(QHostAddress::LocalHost, port);
        QVERIFY(client.waitForConnected());
        const auto statusOf = [](const QByteArray& line) {
            return QJsonDocument::fromJson(line).object();
        };
        QByteArrayList lines = answers(client, "status\r\nSTATUS\n", 2);
        QCOMPARE(lines.size(), 2);
        QCOMPARE(statusOf(lines.first()),
                 (QJsonObject{{"document"_s, QJsonValue()}, {"finished"_s, 0}, {"target"_s, 0}}));
        QVERIFY(statusOf(lines.last()).contains("error"_s));

        const QString path = samples.session.write(
            "piece.ovdoc"_s,
            R"({"format": "ovdoc", "version": 1, "printCount": {"finished": 3, "target": 8}})");
        const std::unique_ptr<Doc::Document> document(
            samples.session.application().openDocument(path));
        lines = answers(client, "status\n", 1);
        QCOMPARE(statusOf(lines.value(0)),
                 (QJsonObject{{"document"_s, path}, {"finished"_s, 3}, {"target"_s, 8}}));

        App::CommInfoRegistry::instance()->stop();
        QTRY_COMPARE(client.state(), QTcpSocket::UnconnectedState);
        client.connectToHost(QHostAddress::LocalHost, port);
        QVERIFY(!client.waitForConnected(1000));
        samples.session.application().closeDocument();
    }

    void tcpTriggerLimits()
    {
        const SampleSession samples;
        App::CommInfoRegistry::instance()->start();
        const QByteArray started = samples.console.lines.last();
        const auto port = started.mid(started.lastIndexOf(' ') + 1).toUShort();
        const auto connected = [port] {
            auto client = std::make_unique<QTcpSocket>();
            client->connectToHost(QHostAddress::LocalHost, port);
            return client->waitForConnected() ? std::move(client) : nullptr;
        };

        for (const QByteArray& request : {QByteArray(257, 'x') + '\n', QByteArray(300, 'x'),
                                          QByteArray(300, ' ') + "status\n"}) {
            const auto client = connected();
            QVERIFY(client);
            const QByteArrayList lines = answers(*client, request, 2);
            QCOMPARE(lines, QByteArrayList({R"({"error":"the line is too long"})"}));
        }

        const auto patient = connected();
        QVERIFY(patient);
        QCOMPARE(answers(*patient, QByteArray("status\n").repeated(2000), 2000).size(), 2000);
        patient->abort();

        std::vector<std::unique_ptr<QTcpSocket>> clients;
        for (int i = 0; i < 8; ++i) {
            clients.push_back(connected());
            QVERIFY(answers(*clients.back(), QByteArray(256, 'x') + "\n", 1)
                        .first()
                        .contains("unknown request"));
        }
        const auto oneMore = connected();
        QVERIFY(oneMore);
        QVERIFY(answers(*oneMore, "", 2).value(0).contains("too many clients"));
    }

    void verdicts()
    {
        // One of each kind in a directory, with words that tell its author what to do.
        QTemporaryDir directory;
        const auto copy = [&directory](const QString& from, const char* name, bool half = false) {
            QFile source(from);
            QFile target(directory.filePath(QLatin1String(name)));
            if (!source.open(QIODevice::ReadOnly) || !target.open(QIODevice::WriteOnly))
                qFatal("cannot copy %s", qPrintable(from));
            target.write(
                source.readAll().left(half ? static_cast<int>(source.size() / 2) : INT_MAX));
        };
        const QString samples = QStringLiteral(SAMPLE_PLUGIN_DIR "/");
        const QString others = QStringLiteral(OTHER_PLUGIN_DIR "/");
        copy(samples + "relief-engraving.dll"_s, "accepted.dll");
        copy(samples + "rotary-axis.dll"_s, "board.dll");
        copy(samples + "rotary-axis.dll"_s, "cut.dll", true);
        copy(others + "OtherInterface.dll"_s, "interface.dll");
        copy(others + "PluginWithoutIdentifier.dll"_s, "nobody.dll");
        copy(QStringLiteral(OVAPP_HOST), "program.dll");

        const auto examine = [&directory](const QStringList& options, QByteArray& output) {
            QProcess host;
            host.start(QStringLiteral(OVAPP_HOST),
                       QStringList({"plugins"_s, "--app-dir"_s, directory.path(), "--plugins"_s,
                                    directory.path()}) +
                           options);
            const bool ended = host.waitForFinished() && host.exitStatus() == QProcess::NormalExit;
            output = host.readAllStandardOutput();
            return ended ? host.exitCode() : -1;
        };
        QByteArray output;
        QCOMPARE(examine({"--json"_s, "--board"_s, "4"_s}, output), 1);
        const QJsonArray plugins =
            QJsonDocument::fromJson(output).object().value("plugins"_s).toArray();
        const struct
        {
            const char* file;
            const char* verdict;
            const char* words;
        } expected[] = {{"accepted", "accepted", "accepted"},
                        {"board", "other-board", "supportedBoardTypes() is 0x2"},
                        {"cut", "no-plugin", "Qt cannot load it"},
                        {"interface", "no-interface", "Q_INTERFACES"},
                        {"nobody", "other-board", "supportedBoardTypes() is 0x2"},
                        {"program", "no-plugin", "Qt cannot load it"}};
        QCOMPARE(plugins.size(), 6);
        for (int i = 0; i < 6; ++i) {
            const QJsonObject plugin = plugins.at(i).toObject();
            QVERIFY2(plugin.value("file"_s).toString().endsWith(
                         u'/' + QLatin1String(expected[i].file) + ".dll"_s),
                     expected[i].file);
            QCOMPARE(plugin.value("verdict"_s).toString(), QLatin1String(expected[i].verdict));
            QVERIFY2(
                plugin.value("explanation"_s).toString().contains(QLatin1String(expected[i].words)),
                expected[i].file);
            QCOMPARE(plugin.value("accepted"_s).toBool(), i == 0);
        }

        QCOMPARE(examine({"--board"_s, "2"_s}, output), 1);
        QVERIFY2(output.contains("refused: pluginID() is 0"), output);
        for (const char* name : {"cut", "interface", "nobody", "program", "board"})
            QVERIFY(QFile::remove(directory.filePath(QLatin1String(name) + ".dll"_s)));
        QCOMPARE(examine({}, output), 0);
    }

    void profile()
    {
        const QTemporaryDir directory;
        QProcess host;
        host.start(QStringLiteral(OVAPP_HOST),
                   {"plugins"_s, "--profile"_s, "--app-dir"_s, directory.path(), "--plugins"_s,
                    QStringLiteral(SAMPLE_PLUGIN_DIR), "--board"_s, "1"_s});
        QVERIFY(host.waitForFinished());
        QCOMPARE(host.exitCode(), 1);
        const QByteArrayList lines = host.readAllStandardOutput().trimmed().split('\n');
        QCOMPARE(lines.size(), 5);
        QVERIFY(lines.first().contains("LOAD/MS  START/MS  STOP/MS  VERDICT"));
        // It was started, so it has its settings; the refused one was not.
        QVERIFY(QFile::exists(directory.filePath("ProductionCounter"_s)));
        QVERIFY2(QRegularExpression("rotary-axis.dll +- .* - +- +refused"_s)
                     .match(QString::fromLocal8Bit(lines.at(3)))
                     .hasMatch(),
                 lines.at(3));
    }
};

QTEST_GUILESS_MAIN(tst_samples)
#include "tst_samples.moc"
