#pragma once

#include <ovdatabase_export.h>

namespace Database {

/// A substitute for the in-memory databases. It only has the functions for start-up and shutdown,
/// which do nothing: this program creates no databases.
class OVDATABASE_EXPORT MemoryDatabaseManager
{
public:
    /// `App::Application` calls these at start-up and shutdown, on the main thread.
    /// @{
    static void init();
    static void destruct();
    /// @}
};

} // namespace Database
