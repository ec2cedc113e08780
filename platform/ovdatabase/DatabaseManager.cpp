#include <ovdatabase/DatabaseManager.h>

namespace Database {

void DatabaseManager::init()
{
}

void DatabaseManager::destruct()
{
}

} // namespace Database
