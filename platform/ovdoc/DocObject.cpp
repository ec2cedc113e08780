#include <ovdoc/DocObject.h>

namespace Doc {

DocObject::~DocObject() = default;

void DocObject::initPropertyType()
{
}

Laser::PrintCountParams DocObject::printCountData() const
{
    return _printCount;
}

void DocObject::setPrintCountData(const Laser::PrintCountParams& printCount)
{
    _printCount = printCount;
}

} // namespace Doc
