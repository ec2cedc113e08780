#pragma once

#include <ovapp_export.h>

#include <QList>

namespace App {

class ExtendPluginInfo;

/// The list of descriptions of extension plug-ins.
///
/// The registry neither owns nor calls the descriptions: keep a description alive while it is
/// registered, and unregister it before destroying it. The registry does not lock: use it on one
/// thread at a time, normally the main thread.
class OVAPP_EXPORT ExtendPluginRegistry
{
public:
    /// Creates an empty registry; does nothing if there is one. `Application::init` calls it.
    static void init();
    /// Returns the registry. Valid between `init` and `destruct` only.
    static ExtendPluginRegistry& instance();
    /// Deletes the registry, but not the descriptions; does nothing if there is none.
    /// `Application::destruct` calls it.
    static void destruct();

    /// Appends a description. Does nothing if `info` is null or already registered.
    void registerExtendInfo(ExtendPluginInfo* info);
    /// Removes a description. Does nothing if it is not registered.
    void unregisterExtendInfo(ExtendPluginInfo* info);

    /// Returns true if this description is registered.
    bool contains(ExtendPluginInfo* info);
    /// Returns the number of descriptions.
    int count() const;
    /// Returns the description at `index` in order of registration; null if `index` is out of
    /// range.
    ExtendPluginInfo* infoAt(int index);

private:
    ExtendPluginRegistry();
    ~ExtendPluginRegistry();
    Q_DISABLE_COPY(ExtendPluginRegistry)

    static OVAPP_NO_EXPORT ExtendPluginRegistry* _p_instance;

    QList<ExtendPluginInfo*> _infos;
};

} // namespace App
