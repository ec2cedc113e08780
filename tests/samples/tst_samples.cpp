#include <support/Listener.h>
#include <support/SampleSession.h>

#include <ovdoc/Document.h>
#include <ovdoc/Transaction.h>
#include <registries/ExtendPluginInfo.h>
#include <registries/ExtendPluginRegistry.h>

#include <QTcpSocket>
#include <QtTest>

#include <memory>
#include <stdexcept>

#ifdef Q_OS_UNIX
#include <sys/socket.h>
#endif

using App::PluginLoader;

/// Sends a request to the TCP trigger and returns the data received until there are `lines` lines
/// or the connection is closed.
static QByteArrayList answers(QTcpSocket& client, const QByteArray& request, int lines)
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
        // The connection is closed when the client shuts down its sending side.
        const auto closing = connected();
        QCOMPARE(answers(*closing, "status\n", 1).size(), 1);
        QCOMPARE(::shutdown(static_cast<int>(closing->socketDescriptor()), SHUT_WR), 0);
        QTRY_COMPARE(closing->state(), QTcpSocket::UnconnectedState);
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
        QByteArrayList lines = answers(client, "status\r\nSTATUS\nfinish\n", 3);
        QCOMPARE(lines.value(0), QByteArray(R"({"document":null,"finished":0,"target":0})"));
        QVERIFY(lines.value(1).contains("error"));
        QVERIFY(lines.value(2).contains("error"));
        const QString path = samples.write(
            "piece.ovdoc"_s,
            R"({"format": "ovdoc", "version": 1, "printCount": {"finished": 3, "target": 8}})");
        const std::unique_ptr<Doc::Document> document(samples.application().openDocument(path));
        const QString status = R"({"document":"%1","finished":%2,"target":8})"_s.arg(path);
        QCOMPARE(answers(client, "status\n", 1), QByteArrayList{status.arg(3).toUtf8()});
        QStringList calls;
        Listener listener([&calls](const QString& call) {
            calls += call;
            if (calls.size() == 3)
                throw std::runtime_error("the third call fails");
        });
        samples.application().addTransactionListener(&listener);
        samples.application().addPropertyListener(&listener);
        for (int finished : {4, 5})
            QCOMPARE(answers(client, "finish\n", 1), QByteArrayList{status.arg(finished).toUtf8()});
        QCOMPARE(calls, QStringList({"transaction %1 Finish a piece"_s.arg(path),
                                     "property %1 1 4"_s.arg(path),
                                     "transaction %1 Finish a piece"_s.arg(path)}));

        App::CommInfoRegistry::instance()->stop();
        QTRY_COMPARE(client.state(), QTcpSocket::UnconnectedState);
        QCOMPARE(connected()->state(), QTcpSocket::UnconnectedState);
        samples.application().closeDocument();
    }
};

QTEST_GUILESS_MAIN(tst_samples)
#include "tst_samples.moc"
