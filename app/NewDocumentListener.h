#pragma once

#include <ovapp_export.h>

namespace Doc {
class Document;
} // namespace Doc

namespace App {

/// A listener that is called when a document has been created or opened.
///
/// Register it with `Application`. Main thread only, including its destruction.
class OVAPP_EXPORT NewDocumentListener
{
public:
    /// `document` is the new document; it is already the active one.
    virtual void updateNewDocumentListener(Doc::Document* document) = 0;

    /// Removes the listener from the application object if it is still registered.
    virtual ~NewDocumentListener();
};

} // namespace App
