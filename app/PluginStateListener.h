#pragma once

#include <ovapp_export.h>

namespace App {

/// A listener that is called when the state of a plug-in has changed. The library itself never
/// sends this notification, not even when it loads, starts or stops plug-ins: the code that changes
/// the state calls `Application::notifyPluginStateChangeListener`.
///
/// Register it with `Application`, and remove it there before destroying it. Main thread only.
class OVAPP_EXPORT PluginStateListener
{
public:
    /// `state` is passed on unchanged; its values are application-defined.
    virtual void updatePluginStateListener(int state) = 0;

    virtual ~PluginStateListener();
};

} // namespace App
