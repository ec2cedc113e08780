#include <ovdatabase/MemoryDatabaseManager.h>

namespace Database {

void MemoryDatabaseManager::init()
{
}

void MemoryDatabaseManager::destruct()
{
}

} // namespace Database
