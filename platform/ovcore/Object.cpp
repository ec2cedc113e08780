#include <ovcore/Object.h>

namespace Core {

void Object::initPropertyType()
{
}

} // namespace Core
