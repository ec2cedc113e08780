#include <ovdoc/Storage.h>

#include <ovdoc/DocObject.h>

namespace Doc {

Storage::Storage() : _p_docObject(QSharedPointer<DocObject>::create())
{
}

Storage::~Storage() = default;

QSharedPointer<DocObject> Storage::queryDocObjectDirect() const
{
    return _p_docObject;
}

} // namespace Doc
