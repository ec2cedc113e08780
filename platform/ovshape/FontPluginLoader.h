#pragma once

#include <ovshape_export.h>

namespace FontLibrary {

/// The font plug-ins, as far as start-up and shutdown need them: the font database reads the common
/// outline formats by itself, so there is none to load.
class OVSHAPE_EXPORT FontPluginLoader
{
public:
    /// `App::Application` calls these at start-up and shutdown, on the main thread.
    /// @{
    static void init();
    static void destruct();
    /// @}
};

} // namespace FontLibrary
