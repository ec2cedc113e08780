#include "TriggerChannel.h"

#include <app/Application.h>
#include <ovcore/ConsoleSingleton.h>
#include <ovdoc/DocObject.h>
#include <ovdoc/Document.h>
#include <ovdoc/Storage.h>
#include <plugins/PluginBaseSettings.h>

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QSocketNotifier>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>

#include <functional>

namespace {

constexpr int defaultPort = 27180;
constexpr int maximumClients = 8;
constexpr int maximumLineLength = 256; // bytes
/// A client that asks on and on without reading the answers is sent away at this many bytes.
constexpr int maximumBacklog = 64 * 1024;
/// How long to wait for descriptors when the program has run out of them.
constexpr int patience = 1000; // ms

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

/// Hands its clients, which are its children, on as they are let in. Kept as pending ones, they
/// would set it accepting again.
class Server : public QTcpServer
{
public:
    explicit Server(const std::function<void(QTcpSocket*)>& welcome) : _welcome(welcome) {}

protected:
    void incomingConnection(qintptr descriptor) override
    {
        auto* client = new QTcpSocket(this);
        client->setSocketDescriptor(descriptor);
        _welcome(client);
    }

private:
    const std::function<void(QTcpSocket*)> _welcome;
};

bool isDescriptorFree()
{
    return QFile(QProcess::nullDevice()).open(QIODevice::ReadOnly);
}

void sendAway(QTcpSocket* client, const QByteArray& farewell)
{
    client->disconnect();
    QObject::connect(client, &QTcpSocket::disconnected, client, &QObject::deleteLater);
    client->write(farewell);
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

    auto server = std::make_unique<Server>([this](QTcpSocket* client) { welcome(client); });
    Core::ConsoleSingleton& console = Core::ConsoleSingleton::instance();
    if (!isNumber || port < 0 || port > 0xffff) {
        console.warning("TriggerChannel::start: %s is no port",
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
    // Left to itself, the server tries again at once and for ever when there is no descriptor for a
    // client, or never again, as its first failure was.
    _server->pauseAccepting();
    _knocking =
        std::make_unique<QSocketNotifier>(_server->socketDescriptor(), QSocketNotifier::Read);
    QObject::connect(_knocking.get(), &QSocketNotifier::activated, _server.get(),
                     [this] { letIn(); });
}

void TriggerChannel::stop()
{
    if (!_server)
        return;
    _knocking.reset();
    _server.reset();
    Core::ConsoleSingleton::instance().log("TriggerChannel::stop: no longer listening");
}

void TriggerChannel::letIn()
{
    if (isDescriptorFree()) {
        _isOutOfDescriptors = false;
        _server->waitForNewConnection(0);
        return;
    }
    if (!_isOutOfDescriptors) {
        Core::ConsoleSingleton::instance().warning(
            "TriggerChannel::letIn: no client can be let in until descriptors are free");
    }
    _isOutOfDescriptors = true;
    _knocking->setEnabled(false);
    QTimer::singleShot(patience, _knocking.get(), [this] { _knocking->setEnabled(true); });
}

void TriggerChannel::welcome(QTcpSocket* client)
{
    if (_server->findChildren<QTcpSocket*>().size() > maximumClients) {
        sendAway(client, error("too many clients; try again later"));
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
            sendAway(client, error("the line is too long"));
            return;
        }
        client->write(request == "status" ? status()
                                          : error("unknown request; the one there is: status"));
        // What the client has not read yet, and the system does not take, is the backlog.
        client->flush();
        if (client->bytesToWrite() > maximumBacklog) {
            client->abort();
            return;
        }
    }
    if (client->bytesAvailable() > maximumLineLength + 1)
        sendAway(client, error("the line is too long"));
}
