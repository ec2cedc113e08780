#pragma once

#include <ovapp_export.h>

namespace Doc {
class Document;
} // namespace Doc

namespace App {

/// A listener that is called when the active document is closed, or is replaced by a document that
/// is created or opened.
///
/// Register it with `Application`. Main thread only, including its destruction.
class OVAPP_EXPORT CloseDocumentListener
{
public:
    /// `document` is the document that is closed; it is still the active one. After the last
    /// listener has been called, the library drops its pointer. It never deletes the document:
    /// the application does, after all listeners have been called.
    virtual void updateCloseDocumentListener(Doc::Document* document) = 0;

    /// Removes the listener from the application object if it is still registered.
    virtual ~CloseDocumentListener();
};

} // namespace App
