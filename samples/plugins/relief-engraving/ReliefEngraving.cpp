#include "ReliefEngraving.h"

#include <ovcore/ConsoleSingleton.h>
#include <registries/ExtendPluginRegistry.h>

QString ReliefEngravingInfo::name() const
{
    return QStringLiteral("relief-engraving");
}

QString ReliefEngravingInfo::nameForTranslate() const
{
    return QStringLiteral("Relief engraving");
}

QString ReliefEngravingInfo::description() const
{
    return QStringLiteral("Engraves grey values as depths, layer by layer.");
}

int ReliefEngravingInfo::supportedBoardTypes() const
{
    return 0x1 | 0x4;
}

quint64 ReliefEngraving::pluginID() const
{
    return 0x5d1c07a93be24f03;
}

int ReliefEngraving::supportedBoardTypes() const
{
    return _info.supportedBoardTypes();
}

void ReliefEngraving::start()
{
    App::ExtendPluginRegistry& extensions = App::ExtendPluginRegistry::instance();
    extensions.registerExtendInfo(&_info);
    Core::ConsoleSingleton::instance().log("ReliefEngraving::start: %d extensions registered",
                                           extensions.count());
}

void ReliefEngraving::stop()
{
    App::ExtendPluginRegistry::instance().unregisterExtendInfo(&_info);
}

App::PluginInfo ReliefEngraving::pluginInfo() const
{
    App::PluginInfo info;
    info.set(QStringLiteral("Name"), QStringLiteral("relief engraving"));
    return info;
}

bool ReliefEngraving::needSaveDocBeforeStart() const
{
    return true;
}
