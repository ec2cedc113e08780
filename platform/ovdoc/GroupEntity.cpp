#include <ovdoc/GroupEntity.h>

namespace Doc {

void GroupEntity::initPropertyType()
{
}

} // namespace Doc
