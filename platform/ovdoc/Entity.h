#pragma once

#include <ovcore/Object.h>
#include <ovdoc_export.h>

namespace Doc {

/// An object that is marked: the base class of all shapes.
class OVDOC_EXPORT Entity : public Core::Object
{
public:
    /// Registers the property types of the class, as `Core::Object::initPropertyType` does.
    static void initPropertyType();
};

} // namespace Doc
