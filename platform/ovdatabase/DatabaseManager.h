#pragma once

#include <ovdatabase_export.h>

/// The program's databases. This implementation has none.
namespace Database {

/// A substitute for the database connections. It only has the functions for start-up and shutdown,
/// which do nothing: this program opens no connections.
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
