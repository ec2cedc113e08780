#include "session/HeartbeatChannel.h"

#include "session/EventPrinter.h"

namespace Host {

HeartbeatChannel::HeartbeatChannel(EventPrinter& printer, std::chrono::milliseconds interval)
    : _printer(printer)
{
    _timer.setInterval(interval);
    QObject::connect(&_timer, &QTimer::timeout, &_timer,
                     [this] { _printer.print(name(), QStringLiteral("is alive")); });
}

QString HeartbeatChannel::name() const
{
    return QStringLiteral("heartbeat channel");
}

void HeartbeatChannel::start()
{
    _printer.print(name(), QStringLiteral("starts"));
    _timer.start();
}

void HeartbeatChannel::stop()
{
    _timer.stop();
    _printer.print(name(), QStringLiteral("stops"));
}

} // namespace Host
