#pragma once

#include <registries/CommInfo.h>

#include <QTimer>

#include <chrono>

namespace Host {

class EventPrinter;

/// A minimal communication channel: while it is started, it prints at intervals, from the event
/// loop, that it is alive.
class HeartbeatChannel : public App::CommInfo
{
public:
    HeartbeatChannel(EventPrinter& printer, std::chrono::milliseconds interval);

    QString name() const override;
    void start() override;
    void stop() override;

private:
    EventPrinter& _printer;
    QTimer _timer;
};

} // namespace Host
