#pragma once

#include <ovdoc_export.h>

namespace Doc {

/// The kinds of entities, as far as start-up and shutdown need them: documents of this
/// implementation hold no entities, so there is no kind to register.
class OVDOC_EXPORT EntityInfoRegistry
{
public:
    /// `App::Application` calls these at start-up and shutdown, on the main thread.
    /// @{
    static void init();
    static void destruct();
    /// @}
};

} // namespace Doc
