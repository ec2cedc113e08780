#pragma once

#include <ovcore/Object.h>
#include <ovcore/PrintCountParams.h>
#include <ovdoc_export.h>

namespace Doc {

/// A document's document-wide object: what belongs to the document as a whole.
class OVDOC_EXPORT DocObject : public Core::Object
{
public:
    ~DocObject() override;

    /// Registers the property types of the class, as `Core::Object::initPropertyType` does.
    static void initPropertyType();

    /// A copy of the document's print-count record.
    Laser::PrintCountParams printCountData() const;
    /// Replaces the record, with no transaction and so no undo step.
    void setPrintCountData(const Laser::PrintCountParams& printCount);

private:
    Laser::PrintCountParams _printCount;
};

} // namespace Doc
