#include <ovdoc/ObjectGroupEntity.h>

namespace Doc {

void ObjectGroupEntity::initPropertyType()
{
}

} // namespace Doc
