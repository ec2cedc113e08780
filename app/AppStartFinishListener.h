#pragma once

#include <ovapp_export.h>

namespace App {

/// Told once, when the program's start-up is complete.
/// Register it with `Application`, and remove it there before destroying it.
class OVAPP_EXPORT AppStartFinishListener
{
public:
    /// A listener that is added meanwhile is told in the same pass.
    virtual void updateAppStartFinishListener() = 0;

    virtual ~AppStartFinishListener() = default;
};

} // namespace App
