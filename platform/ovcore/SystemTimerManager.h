#pragma once

#include <ovcore_export.h>

namespace Core {

/// The timer service, as far as start-up and shutdown need it: nothing in this program asks for a
/// timer, so being up takes no resources.
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
