#pragma once

#include <ovdatabase_export.h>

namespace Database {

/// The database connections, as far as start-up and shutdown need them: nothing in this program
/// opens one, so being up takes no resources.
class OVDATABASE_EXPORT DatabaseManager
{
public:
    static void init();
    static void destruct();
};

} // namespace Database
