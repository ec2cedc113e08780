#include <ovdoc/Layer.h>

namespace Doc {

void Layer::initPropertyType()
{
}

} // namespace Doc
