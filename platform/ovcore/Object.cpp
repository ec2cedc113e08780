#include <ovcore/Object.h>

namespace Core {

Object::~Object() = default;

void Object::initPropertyType()
{
}

} // namespace Core
