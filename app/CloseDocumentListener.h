#pragma once

#include <ovapp_export.h>

namespace Doc {
class Document;
} // namespace Doc

namespace App {

/// Told when a document is closed or makes way for a new one.
/// Register it with `Application`, and remove it there before destroying it. Main thread only.
class OVAPP_EXPORT CloseDocumentListener
{
public:
    /// `document` is closed; it is still the active one. The library forgets it right after the
    /// last listener and never deletes it: whoever disposes of documents does, once all have been
    /// told.
    virtual void updateCloseDocumentListener(Doc::Document* document) = 0;

    virtual ~CloseDocumentListener();
};

} // namespace App
