#pragma once

#include <ovdatabase_export.h>

/// The program's databases. This implementation has none: what is here can be brought up and down.
namespace Database {

/// The database connections, as far as start-up and shutdown need them: nothing in this program
/// opens one, so being up takes no resources.
class OVDATABASE_EXPORT DatabaseManager
{
public:
    /// `App::Application` calls these at start-up and shutdown, on the main thread.
    /// @{
    static void init();
    static void destruct();
    /// @}
};

} // namespace Database
