#include <ovdatabase/DatabaseHandlerFactory.h>

namespace Database {

void DatabaseHandlerFactory::init()
{
}

void DatabaseHandlerFactory::destruct()
{
}

} // namespace Database
