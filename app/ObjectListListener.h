#pragma once

#include <ovapp_export.h>

namespace Doc {
class Document;
} // namespace Doc

namespace App {

/// A listener that is called when the list of a document's objects has changed. The library itself
/// never sends this notification: the code that changes the list calls
/// `Application::notifyObjectListListener`.
///
/// Register it with `Application`. Main thread only, including its destruction.
class OVAPP_EXPORT ObjectListListener
{
public:
    /// Removes the listener from the application object if it is still registered.
    virtual ~ObjectListListener();

    /// `document` is always the active document, even if another one was passed to the notifying
    /// function; null if there is none.
    virtual void updateObjectListListener(Doc::Document* document) = 0;
};

} // namespace App
