#include "RotaryAxis.h"

#include <ovcore/ConsoleSingleton.h>

quint64 RotaryAxis::pluginID() const
{
    return 0x5d1c07a93be24f04;
}

int RotaryAxis::supportedBoardTypes() const
{
    return 0x2;
}

void RotaryAxis::start()
{
    Core::ConsoleSingleton::instance().log("RotaryAxis::start: the axis is in use");
}

void RotaryAxis::stop()
{
    Core::ConsoleSingleton::instance().log("RotaryAxis::stop: the axis is free");
}

App::PluginInfo RotaryAxis::pluginInfo() const
{
    App::PluginInfo info;
    info.set(QStringLiteral("Name"), QStringLiteral("rotary axis"));
    return info;
}
