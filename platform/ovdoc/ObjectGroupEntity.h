#pragma once

#include <ovdoc/GroupEntity.h>
#include <ovdoc_export.h>

namespace Doc {

/// A group whose members keep their own properties.
class OVDOC_EXPORT ObjectGroupEntity : public GroupEntity
{
public:
    /// Registers the property types of the class, as `Core::Object::initPropertyType` does.
    static void initPropertyType();
};

} // namespace Doc
