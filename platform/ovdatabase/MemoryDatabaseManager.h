#pragma once

#include <ovdatabase_export.h>

namespace Database {

/// The databases in memory, as far as start-up and shutdown need them: nothing in this program
/// makes one, so being up takes no resources.
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
