#pragma once

#include <ovdoc_export.h>

#include <QSharedPointer>

namespace Doc {

class DocObject;

/// The objects of one document.
class OVDOC_EXPORT Storage
{
public:
    /// Creates a storage that only contains a document-wide object with counts of 0.
    Storage();
    Storage(const Storage&) = delete;
    Storage& operator=(const Storage&) = delete;
    ~Storage();

    /// Returns the document-wide object; never null.
    QSharedPointer<DocObject> queryDocObjectDirect() const;

private:
    QSharedPointer<DocObject> _p_docObject;
};

} // namespace Doc
