#pragma once

#include <ovapp_export.h>

#include <QList>

namespace App {

class ExtendPluginInfo;

/// The list of descriptions of extension plug-ins. It holds plain pointers and never calls them:
/// whoever registers a description keeps it alive and unregisters it before destroying it. Nothing
/// is locked: one thread uses it at a time, as a rule the main thread.
class OVAPP_EXPORT ExtendPluginRegistry
{
public:
    /// Creates the registry, empty; keeps the one that exists. `Application::init` calls it.
    static void init();
    /// The registry. Valid from `init` until `destruct` only; it is never made here.
    static ExtendPluginRegistry& instance();
    /// Deletes the registry, if there is one, but none of the descriptions.
    /// `Application::destruct` calls it.
    static void destruct();

    /// Adds a description at the end; null and one that is registered already are ignored.
    void registerExtendInfo(ExtendPluginInfo* info);
    /// Removes a description; one that is not registered is ignored.
    void unregisterExtendInfo(ExtendPluginInfo* info);

    /// Whether this very description is registered.
    bool contains(ExtendPluginInfo* info);
    /// The number of descriptions.
    int count() const;
    /// The description at `index` in order of registration; null outside 0 to `count()` - 1.
    ExtendPluginInfo* infoAt(int index);

private:
    ExtendPluginRegistry();
    ~ExtendPluginRegistry();
    Q_DISABLE_COPY(ExtendPluginRegistry)

    static OVAPP_NO_EXPORT ExtendPluginRegistry* _p_instance;

    QList<ExtendPluginInfo*> _infos;
};

} // namespace App
