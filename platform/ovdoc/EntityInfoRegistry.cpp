#include <ovdoc/EntityInfoRegistry.h>

namespace Doc {

void EntityInfoRegistry::init()
{
}

void EntityInfoRegistry::destruct()
{
}

} // namespace Doc
