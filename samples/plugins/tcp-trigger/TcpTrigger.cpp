#include "TcpTrigger.h"

#include <registries/CommInfoRegistry.h>

quint64 TcpTrigger::pluginID() const
{
    return 0x5d1c07a93be24f02;
}

int TcpTrigger::supportedBoardTypes() const
{
    return 0x7fffffff;
}

void TcpTrigger::start()
{
    App::CommInfoRegistry::instance()->registerCommInfo(&_channel);
}

void TcpTrigger::stop()
{
    _channel.stop();
    if (App::CommInfoRegistry::instance()->contains(&_channel))
        App::CommInfoRegistry::instance()->unregisterCommInfo(&_channel);
}

App::PluginInfo TcpTrigger::pluginInfo() const
{
    App::PluginInfo info;
    info.set(QStringLiteral("Name"), QStringLiteral("TCP trigger"));
    info.set(QStringLiteral("Version"), QStringLiteral("1.0"));
    return info;
}
