#include <plugins/PluginInterface.h>

namespace App {

PluginInterface::~PluginInterface() = default;

QString PluginInterface::optionalText() const
{
    return QString();
}

bool PluginInterface::optionalFlag() const
{
    return true;
}

} // namespace App
