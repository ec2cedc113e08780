#pragma once

#include <ovapp_export.h>

namespace Doc {
class Document;
} // namespace Doc

namespace App {

/// Told when a document has been created or opened.
/// Register it with `Application`, and remove it there before destroying it. Main thread only.
class OVAPP_EXPORT NewDocumentListener
{
public:
    /// `document` is the new one, and the active one already.
    virtual void updateNewDocumentListener(Doc::Document* document) = 0;

    virtual ~NewDocumentListener();
};

} // namespace App
