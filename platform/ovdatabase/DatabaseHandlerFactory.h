#pragma once

#include <ovdatabase_export.h>

namespace Database {

/// A substitute for the factory of database handlers. It only has the functions for start-up and
/// shutdown, which do nothing: this program uses no database handlers.
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
