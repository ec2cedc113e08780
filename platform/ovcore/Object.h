#pragma once

#include <ovcore_export.h>

namespace Core {

/// The base class of all objects in a document.
class OVCORE_EXPORT Object
{
public:
    virtual ~Object();

    /// Registers the property types of the class; called once. Does nothing in this implementation,
    /// in which property types are plain numbers (see `PropertyTypeID`).
    static void initPropertyType();
};

} // namespace Core
