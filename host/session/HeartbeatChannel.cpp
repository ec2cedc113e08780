#include "session/HeartbeatChannel.h"

#include "session/EventPrinter.h"

namespace Host {

HeartbeatChannel::HeartbeatChannel(Report& report, std::chrono::milliseconds interval)
    : _report(report)
{
    _timer.setInterval(interval);
    QObject::connect(&_timer, &QTimer::timeout, &_timer,
                     [this] { _report.line(name(), QStringLiteral("is alive")); });
}

QString HeartbeatChannel::name() const
{
    return QStringLiteral("heartbeat channel");
}

void HeartbeatChannel::start()
{
    _report.line(name(), QStringLiteral("starts"));
    _timer.start();
}

void HeartbeatChannel::stop()
{
    _timer.stop();
    _report.line(name(), QStringLiteral("stops"));
}

} // namespace Host
