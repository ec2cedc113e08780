#pragma once

#include <ovapp_export.h>
#include <plugins/PluginInterface.h>

namespace App {

/// What the root object of an extension plug-in is: a plug-in that the executable asks two things
/// more. It declares `Q_INTERFACES(App::PluginInterface)` as any plug-in does, and is loaded as
/// such; a `dynamic_cast` of the `PluginInterface` tells that it is an extension. Main thread.
class OVAPP_EXPORT ExtendPluginInterface : public PluginInterface
{
public:
    ExtendPluginInterface();
    /// A copy has nothing of its source: there is nothing to copy.
    /// @{
    ExtendPluginInterface(const ExtendPluginInterface& other);
    ExtendPluginInterface& operator=(const ExtendPluginInterface& other);
    /// @}
    ~ExtendPluginInterface() override;

    /// Whether the document has to be saved before the executable starts the plug-in; false by
    /// default.
    virtual bool needSaveDocBeforeStart() const;
    /// Whether the extension is in use; true by default.
    virtual bool isActive() const;
};

} // namespace App
