#include <registries/ExtendPluginInfo.h>

namespace App {

ExtendPluginInfo::~ExtendPluginInfo() = default;

QString ExtendPluginInfo::name() const
{
    return QString();
}

QString ExtendPluginInfo::nameForTranslate() const
{
    return QString();
}

} // namespace App
