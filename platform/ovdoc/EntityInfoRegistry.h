#pragma once

#include <ovdoc_export.h>

namespace Doc {

/// A substitute for the registry of entity types. It only has the functions for start-up and
/// shutdown, which do nothing: documents of this implementation contain no entities.
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
