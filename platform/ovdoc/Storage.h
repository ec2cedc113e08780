#pragma once

#include <ovdoc_export.h>

#include <QSharedPointer>

namespace Doc {

class DocObject;

/// The objects of one document.
class OVDOC_EXPORT Storage
{
public:
    /// A storage with nothing but a document-wide object whose counts are 0.
    Storage();
    Storage(const Storage&) = delete;
    Storage& operator=(const Storage&) = delete;
    ~Storage();

    /// The document-wide object, read directly; never null.
    QSharedPointer<DocObject> queryDocObjectDirect() const;

private:
    QSharedPointer<DocObject> _p_docObject;
};

} // namespace Doc
