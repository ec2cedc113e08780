#pragma once

#include <ovdoc/Entity.h>
#include <ovdoc_export.h>

namespace Doc {

/// An entity that consists of other entities.
class OVDOC_EXPORT GroupEntity : public Entity
{
public:
    /// Registers the property types of the class, as `Core::Object::initPropertyType` does.
    static void initPropertyType();
};

} // namespace Doc
