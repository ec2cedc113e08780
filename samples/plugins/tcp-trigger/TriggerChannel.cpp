#include "TriggerChannel.h"

#include <app/Application.h>
#include <ovcore/ConsoleSingleton.h>
#include <ovdoc/DocObject.h>
#include <ovdoc/Document.h>
#include <ovdoc/Storage.h>
#include <ovdoc/Transaction.h>
#include <plugins/PluginBaseSettings.h>

#include <QJsonDocument>
#include <QJsonObject>
#include <QTcpServer>
#include <QTcpSocket>

#include <exception>
#include <limits>

namespace {

constexpr int defaultPort = 27180;
constexpr int maximumClients = 8;
constexpr int maximumLineLength = 256; // bytes
/// Bytes of unread answers at which a client is disconnected.
constexpr int maximumBacklog = 64 * 1024;

QByteArray line(const QJsonObject& object)
{
    return QJsonDocument(object).toJson(QJsonDocument::Compact) + '\n';
}

QByteArray error(const char* text)
{
    return line({{QStringLiteral("error"), QLatin1String(text)}});
}

QByteArray status()
{
    const Doc::Document* document = App::Application::instance().activateDocument();
    if (!document) {
        return line({{QStringLiteral("document"), QJsonValue()},
                     {QStringLiteral("finished"), 0},
                     {QStringLiteral("target"), 0}});
    }
    const Laser::PrintCountParams counts =
        document->storage()->queryDocObjectDirect()->printCountData();
    return line({{QStringLiteral("document"), document->filePath()},
                 {QStringLiteral("finished"), counts.finishedCount()},
                 {QStringLiteral("target"), counts.targetCount()}});
}

/// Counts a piece in the active document, as the program does when the user finishes one.
QByteArray finish()
{
    App::Application& application = App::Application::instance();
    Doc::Document* const document = application.activateDocument();
    if (!document)
        return error("no document is open");
    const QSharedPointer<Doc::DocObject> object = document->storage()->queryDocObjectDirect();
    Laser::PrintCountParams counts = object->printCountData();
    if (counts.finishedCount() == std::numeric_limits<int>::max())
        return error("the count is at its limit");
    counts.setFinishedCount(counts.finishedCount() + 1);
    object->setPrintCountData(counts);
    // An exception of a listener must not reach the event loop.
    try {
        Doc::Transaction transaction(QStringLiteral("Finish a piece"));
        application.notifyTransactionListeners(document, &transaction);
        application.notifyPropertyListeners(document, true, counts.finishedCount());
        constexpr int anyObjectType = -1;
        application.postTransactionEvent(transaction, true, anyObjectType, nullptr);
    } catch (const std::exception& exception) {
        Core::ConsoleSingleton::instance().warning("TriggerChannel: a listener failed: %s",
                                                   exception.what());
    } catch (...) {
        Core::ConsoleSingleton::instance().warning("TriggerChannel: a listener failed");
    }
    return status();
}

QByteArray answerTo(const QByteArray& request)
{
    if (request == "status")
        return status();
    if (request == "finish")
        return finish();
    return error("unknown request; expected 'status' or 'finish'");
}

void rejectClient(QTcpSocket* client, const QByteArray& message)
{
    client->disconnect();
    QObject::connect(client, &QTcpSocket::disconnected, client, &QObject::deleteLater);
    client->write(message);
    client->disconnectFromHost();
}

} // namespace

TriggerChannel::TriggerChannel() = default;

TriggerChannel::~TriggerChannel() = default;

QString TriggerChannel::name() const
{
    return QStringLiteral("TCP trigger");
}

void TriggerChannel::start()
{
    if (_server)
        return;
    App::PluginBaseSettings settings(QStringLiteral("TcpTrigger"));
    const QVariant setting = settings.value(QStringLiteral("Server/port"), defaultPort);
    bool isNumber = false;
    const int port = setting.toInt(&isNumber);

    auto server = std::make_unique<QTcpServer>();
    Core::ConsoleSingleton& console = Core::ConsoleSingleton::instance();
    if (!isNumber || port < 0 || port > 0xffff) {
        console.warning("TriggerChannel::start: '%s' is not a valid port",
                        setting.toString().toLocal8Bit().constData());
        return;
    }
    if (!server->listen(QHostAddress::LocalHost, static_cast<quint16>(port))) {
        console.warning("TriggerChannel::start: cannot listen on port %d: %s", port,
                        server->errorString().toLocal8Bit().constData());
        return;
    }
    console.log("TriggerChannel::start: listening on port %d", int(server->serverPort()));
    _server = std::move(server);
    QObject::connect(_server.get(), &QTcpServer::newConnection, _server.get(), [this] {
        while (QTcpSocket* client = _server->nextPendingConnection())
            addClient(client);
    });
}

void TriggerChannel::stop()
{
    if (!_server)
        return;
    _server.reset();
    Core::ConsoleSingleton::instance().log("TriggerChannel::stop: no longer listening");
}

void TriggerChannel::addClient(QTcpSocket* client)
{
    if (_server->findChildren<QTcpSocket*>().size() > maximumClients) {
        rejectClient(client, error("too many clients; try again later"));
        return;
    }
    QObject::connect(client, &QTcpSocket::disconnected, client, &QObject::deleteLater);
    QObject::connect(client, &QTcpSocket::readyRead, client,
                     [client, this] { answerLines(client); });
}

void TriggerChannel::answerLines(QTcpSocket* client)
{
    while (client->canReadLine()) {
        const QByteArray text = client->readLine(maximumLineLength + 2);
        const QByteArray request = text.trimmed();
        if (!text.endsWith('\n') || request.size() > maximumLineLength) {
            rejectClient(client, error("the line is too long"));
            return;
        }
        client->write(answerTo(request));
        // The backlog is the data that the system's send buffer does not take.
        client->flush();
        if (client->bytesToWrite() > maximumBacklog) {
            client->abort();
            return;
        }
    }
    if (client->bytesAvailable() > maximumLineLength + 1)
        rejectClient(client, error("the line is too long"));
}
