#pragma once

#include <ovapp_export.h>

namespace App {

/// A listener that is called when the program's start-up is complete.
///
/// `Application::doAppStartFinished`, which the executable calls once, and every call of
/// `Application::notifyStartFinishListener` notify the listeners that are registered at that time.
///
/// Register it with `Application`. Main thread only, including its destruction.
class OVAPP_EXPORT AppStartFinishListener
{
public:
    /// Listeners that are added during this call are called in the same iteration.
    virtual void updateAppStartFinishListener() = 0;

    /// Removes the listener from the application object if it is still registered.
    virtual ~AppStartFinishListener();
};

} // namespace App
