#include <plugins/ExtendPluginInterface.h>

namespace App {

ExtendPluginInterface::ExtendPluginInterface() = default;

ExtendPluginInterface::ExtendPluginInterface(const ExtendPluginInterface& other) = default;

ExtendPluginInterface&
ExtendPluginInterface::operator=(const ExtendPluginInterface& other) = default;

ExtendPluginInterface::~ExtendPluginInterface() = default;

bool ExtendPluginInterface::needSaveDocBeforeStart() const
{
    return false;
}

bool ExtendPluginInterface::isActive() const
{
    return true;
}

} // namespace App
