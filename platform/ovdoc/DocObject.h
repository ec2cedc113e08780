#pragma once

#include <ovcore/Object.h>
#include <ovcore/PrintCountParams.h>
#include <ovdoc_export.h>

namespace Doc {

/// The object with the properties of a document as a whole.
class OVDOC_EXPORT DocObject : public Core::Object
{
public:
    ~DocObject() override;

    /// Registers the property types of the class, as `Core::Object::initPropertyType` does.
    static void initPropertyType();

    /// Returns a copy of the print counts.
    Laser::PrintCountParams printCountData() const;
    /// Sets the print counts, without a transaction and therefore without an undo step.
    void setPrintCountData(const Laser::PrintCountParams& printCount);

private:
    Laser::PrintCountParams _printCount;
};

} // namespace Doc
