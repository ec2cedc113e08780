#include <registries/ExtendPluginRegistry.h>

#include <registries/PointerList.h>

namespace App {

ExtendPluginRegistry* ExtendPluginRegistry::_p_instance = nullptr;

void ExtendPluginRegistry::init()
{
    if (!_p_instance)
        _p_instance = new ExtendPluginRegistry;
}

ExtendPluginRegistry& ExtendPluginRegistry::instance()
{
    return *_p_instance;
}

void ExtendPluginRegistry::destruct()
{
    delete _p_instance;
    _p_instance = nullptr;
}

ExtendPluginRegistry::ExtendPluginRegistry() = default;

ExtendPluginRegistry::~ExtendPluginRegistry() = default;

void ExtendPluginRegistry::registerExtendInfo(ExtendPluginInfo* info)
{
    PointerList::add(_infos, info);
}

void ExtendPluginRegistry::unregisterExtendInfo(ExtendPluginInfo* info)
{
    PointerList::remove(_infos, info);
}

bool ExtendPluginRegistry::contains(ExtendPluginInfo* info)
{
    return _infos.contains(info);
}

int ExtendPluginRegistry::count() const
{
    return static_cast<int>(_infos.count());
}

ExtendPluginInfo* ExtendPluginRegistry::infoAt(int index)
{
    return _infos.value(index);
}

} // namespace App
