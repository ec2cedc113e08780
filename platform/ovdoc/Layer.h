#pragma once

#include <ovcore/Object.h>
#include <ovdoc_export.h>

namespace Doc {

/// A layer of a document.
class OVDOC_EXPORT Layer : public Core::Object
{
public:
    /// Registers the property types of the class, as `Core::Object::initPropertyType` does.
    static void initPropertyType();
};

} // namespace Doc
