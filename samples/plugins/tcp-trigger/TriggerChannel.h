#pragma once

#include <registries/CommInfo.h>

#include <memory>

class QTcpServer;
class QTcpSocket;

/// A TCP server on the loopback address that answers requests about the active document. The port
/// is the value "Server/port" of the plug-in's settings: 27180 by default, 0 for any free port.
///
/// The request `finish` counts a piece in the active document and notifies the listeners; `status`
/// changes nothing. The answer to both is one line of JSON: {"document": path or null, "finished":
/// number, "target": number}. The answer to any other line, and to `finish` without a document, is
/// {"error": text}. Lines end with a line feed, optionally after a carriage return. When a client
/// shuts down its sending side, the server answers the remaining requests and closes the
/// connection. If no file descriptor is free for a client, the server may not accept others until
/// it is started again.
class TriggerChannel : public App::CommInfo
{
public:
    TriggerChannel();
    ~TriggerChannel() override;

    QString name() const override;
    /// Starts listening and logs the port, or the reason if it cannot listen. Does nothing if the
    /// channel is started.
    void start() override;
    /// Stops listening and closes every connection.
    void stop() override;

private:
    void addClient(QTcpSocket* client);
    void answerLines(QTcpSocket* client);

    /// Null unless the channel is started. The clients are its children.
    std::unique_ptr<QTcpServer> _server;
};
