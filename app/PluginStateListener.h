#pragma once

#include <ovapp_export.h>

namespace App {

/// Told when the state of a plug-in has changed. The library never notifies of it, not when
/// plug-ins are loaded, started or stopped either: whoever changes the state does. Register it with
/// `Application`, and remove it there before destroying it. Main thread only.
class OVAPP_EXPORT PluginStateListener
{
public:
    /// `state` is handed on from the notification; its meaning is that of whoever notifies.
    virtual void updatePluginStateListener(int state) = 0;

    virtual ~PluginStateListener();
};

} // namespace App
