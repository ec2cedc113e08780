#pragma once

#include <ovapp_export.h>

namespace App {

/// A listener that is called when the state of a plug-in has changed. The library itself never
/// sends this notification, not even when it loads, starts or stops plug-ins: the code that changes
/// the state calls `Application::notifyPluginStateChangeListener`.
///
/// Register it with `Application`. Main thread only, including its destruction.
class OVAPP_EXPORT PluginStateListener
{
public:
    /// `state` is passed on unchanged; its values are application-defined.
    virtual void updatePluginStateListener(int state) = 0;

    /// Removes the listener from the application object if it is still registered.
    virtual ~PluginStateListener();
};

} // namespace App
