#include <plugins/ExtendPluginInterface.h>

namespace App {

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
