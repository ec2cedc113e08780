#include <registries/CommInfoRegistry.h>

#include <registries/CommInfo.h>
#include <registries/PointerList.h>

#include <ovcore/ConsoleSingleton.h>

#include <QByteArray>

namespace App {

CommInfoRegistry* CommInfoRegistry::_p_instance = nullptr;

void CommInfoRegistry::init()
{
    if (!_p_instance)
        _p_instance = new CommInfoRegistry;
}

CommInfoRegistry* CommInfoRegistry::instance()
{
    return _p_instance;
}

void CommInfoRegistry::destruct()
{
    delete _p_instance;
    _p_instance = nullptr;
}

CommInfoRegistry::CommInfoRegistry() = default;

CommInfoRegistry::~CommInfoRegistry() = default;

void CommInfoRegistry::registerCommInfo(CommInfo* info)
{
    if (!PointerList::add(_infos, info))
        return;
    Core::ConsoleSingleton::instance().log("CommInfoRegistry::registerCommInfo: %s",
                                           info->name().toLocal8Bit().constData());
}

void CommInfoRegistry::unregisterCommInfo(CommInfo* info)
{
    if (!info)
        return;
    PointerList::remove(_infos, info);
    Core::ConsoleSingleton::instance().log("CommInfoRegistry::unregisterCommInfo: %s",
                                           info->name().toLocal8Bit().constData());
}

bool CommInfoRegistry::contains(CommInfo* info)
{
    return _infos.contains(info);
}

int CommInfoRegistry::count() const
{
    return static_cast<int>(_infos.count());
}

CommInfo* CommInfoRegistry::infoAt(int index)
{
    return _infos.value(index);
}

void CommInfoRegistry::start()
{
    PointerList::forEach<&CommInfo::start>(_infos);
}

void CommInfoRegistry::stop()
{
    PointerList::forEach<&CommInfo::stop>(_infos);
}

} // namespace App
