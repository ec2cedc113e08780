#pragma once

#include <ovshape_export.h>

namespace FontLibrary {

/// A substitute for the loader of font plug-ins. It only has the functions for start-up and
/// shutdown, which do nothing: the font database needs no plug-ins.
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
