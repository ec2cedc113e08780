#pragma once

#include <ovapp_export.h>

namespace App {

/// Told when the program's start-up is complete: by `Application::doAppStartFinished`, which the
/// executable calls once, and by every `Application::notifyStartFinishListener`. Whoever registers
/// after that is not told.
/// Register it with `Application`, and remove it there before destroying it. Main thread only.
class OVAPP_EXPORT AppStartFinishListener
{
public:
    /// A listener that is added meanwhile is told in the same pass. One that removes and adds
    /// itself whenever it is told keeps the pass from ending.
    virtual void updateAppStartFinishListener() = 0;

    virtual ~AppStartFinishListener();
};

} // namespace App
