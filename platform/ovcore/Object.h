#pragma once

#include <ovcore_export.h>

namespace Core {

/// The base of everything a document holds.
class OVCORE_EXPORT Object
{
public:
    virtual ~Object();

    /// Registers the property types of the class, once. Property types are plain numbers in this
    /// implementation (see `PropertyTypeID`), so there is nothing to enter anywhere.
    static void initPropertyType();
};

} // namespace Core
