#pragma once

#include <ovapp_export.h>

namespace Doc {
class Document;
} // namespace Doc

namespace App {

/// A listener that is called when the selection of objects has changed. The library itself never
/// sends this notification: the code that changes the selection calls
/// `Application::notifySelectionListeners`.
///
/// Register it with `Application`. Main thread only, including its destruction.
class OVAPP_EXPORT SelectionListener
{
public:
    /// Removes the listener from the application object if it is still registered.
    virtual ~SelectionListener();

    /// `document` is always the active document, even if another one was passed to the notifying
    /// function; null if there is none.
    virtual void updateSelectionListener(Doc::Document* document) = 0;
};

} // namespace App
