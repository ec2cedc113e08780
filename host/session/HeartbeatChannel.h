#pragma once

#include <registries/CommInfo.h>

#include <QTimer>

#include <chrono>

namespace Host {

class EventPrinter;

/// A minimal communication channel. While it is started, it prints a line at regular intervals,
/// from the event loop.
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
