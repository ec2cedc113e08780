#pragma once

#include <registries/CommInfo.h>

#include <memory>

class QSocketNotifier;
class QTcpServer;
class QTcpSocket;

/// Answers lines of text on a port of the loopback address, which is the value "Server/port" of
/// the plug-in's settings: 27180 by default, 0 for any that is free.
///
/// The one request is `status`; its answer is one line of JSON: {"document": the path or null,
/// "finished": a number, "target": a number}. To any other line the answer is {"error": a text}.
/// Lines end with a line feed, with or without a carriage return before it. A client that has said
/// all that it has to say, and closes its end, is answered and sent away.
class TriggerChannel : public App::CommInfo
{
public:
    TriggerChannel();
    ~TriggerChannel() override;

    QString name() const override;
    /// Listens; logs where, or why it cannot. Does nothing while it listens.
    void start() override;
    /// Stops listening and closes every connection.
    void stop() override;

private:
    void letIn();
    void welcome(QTcpSocket* client);
    void answerLines(QTcpSocket* client);

    /// There while the channel is started; its clients are its children.
    std::unique_ptr<QTcpServer> _server;
    /// Tells of clients that want to be let in.
    std::unique_ptr<QSocketNotifier> _knocking;
    bool _isOutOfDescriptors = false;
};
