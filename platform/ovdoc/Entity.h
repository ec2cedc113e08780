#pragma once

#include <ovcore/Object.h>
#include <ovdoc_export.h>

namespace Doc {

/// Something that is marked: the base of every kind of shape.
class OVDOC_EXPORT Entity : public Core::Object
{
public:
    /// Registers the property types of the class, as `Core::Object::initPropertyType` does.
    static void initPropertyType();
};

} // namespace Doc
