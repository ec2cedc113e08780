#pragma once

#include <ovapp_export.h>

namespace Doc {
class Document;
} // namespace Doc

namespace App {

/// A listener that is called when `Application::setActivateDocument` has made another document, or
/// none, the active one.
///
/// Register it with `Application`. Main thread only, including its destruction.
class OVAPP_EXPORT ActiveDocumentListener
{
public:
    /// `document` is the active document; null if there is none.
    virtual void updateActiveDocumentListener(Doc::Document* document) = 0;

    /// Removes the listener from the application object if it is still registered.
    virtual ~ActiveDocumentListener();
};

} // namespace App
