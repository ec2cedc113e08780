#pragma once

#include <ovapp_export.h>
#include <plugins/PluginInterface.h>

namespace App {

/// The interface of the root object of an extension plug-in, with two more queries, which only the
/// executable calls. The class declares `Q_INTERFACES(App::PluginInterface)`, as every plug-in
/// does; the executable recognises an extension by a `dynamic_cast` of the `PluginInterface`. Main
/// thread only.
class OVAPP_EXPORT ExtendPluginInterface : public PluginInterface
{
public:
    ~ExtendPluginInterface() override;

    /// Returns whether the executable must save the document before it starts the plug-in; false
    /// by default.
    virtual bool needSaveDocBeforeStart() const;
    /// Returns whether the extension is active; true by default.
    virtual bool isActive() const;
};

} // namespace App
