#include <registries/CommInfo.h>

namespace App {

CommInfo::~CommInfo() = default;

QString CommInfo::name() const
{
    return QString();
}

void CommInfo::start()
{
}

void CommInfo::stop()
{
}

} // namespace App
