#pragma once

#include <ovapp_export.h>

namespace Doc {
class Document;
} // namespace Doc

namespace App {

/// Told when another document, or none, has been made the active one with
/// `Application::setActivateDocument`.
/// Register it with `Application`, and remove it there before destroying it. Main thread only.
class OVAPP_EXPORT ActiveDocumentListener
{
public:
    /// `document` is the active document; null when there is none any more.
    virtual void updateActiveDocumentListener(Doc::Document* document) = 0;

    virtual ~ActiveDocumentListener();
};

} // namespace App
