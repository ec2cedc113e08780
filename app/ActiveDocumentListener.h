#pragma once

#include <ovapp_export.h>

namespace Doc {
class Document;
} // namespace Doc

namespace App {

/// A listener that is called when `Application::setActivateDocument` has made another document, or
/// none, the active one.
///
/// Register it with `Application`, and remove it there before destroying it. Main thread only.
class OVAPP_EXPORT ActiveDocumentListener
{
public:
    /// `document` is the active document; null if there is none.
    virtual void updateActiveDocumentListener(Doc::Document* document) = 0;

    virtual ~ActiveDocumentListener();
};

} // namespace App
