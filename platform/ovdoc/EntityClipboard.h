#pragma once

#include <ovdoc_export.h>

namespace Doc {

/// The entity clipboard, as far as start-up and shutdown need it: documents of this implementation
/// hold no entities, so there is nothing to keep.
class OVDOC_EXPORT EntityClipboard
{
public:
    /// `App::Application` calls these at start-up and shutdown, on the main thread.
    /// @{
    static void init();
    static void destruct();
    /// @}
};

} // namespace Doc
