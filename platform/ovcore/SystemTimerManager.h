#pragma once

#include <ovcore_export.h>

namespace Core {

/// A substitute for the timer service. It only has the functions for start-up and shutdown, which
/// do nothing: this program uses none of its timers.
class OVCORE_EXPORT SystemTimerManager
{
public:
    /// `App::Application` calls these at start-up and shutdown, on the main thread.
    /// @{
    static void init();
    static void destruct();
    /// @}
};

} // namespace Core
