#include <ovdoc/Entity.h>

namespace Doc {

void Entity::initPropertyType()
{
}

} // namespace Doc
