#pragma once

#include <ovdatabase_export.h>

namespace Database {

/// The makers of database handlers, as far as start-up and shutdown need them: nothing in this
/// program asks for a handler, so being up takes no resources.
class OVDATABASE_EXPORT DatabaseHandlerFactory
{
public:
    /// `App::Application` calls these at start-up and shutdown, on the main thread.
    /// @{
    static void init();
    static void destruct();
    /// @}
};

} // namespace Database
