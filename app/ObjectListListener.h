#pragma once

#include <ovapp_export.h>

namespace Doc {
class Document;
} // namespace Doc

namespace App {

/// Told when the list of a document's objects has changed. The library never notifies of it:
/// whoever makes the change does. Register it with `Application`, and remove it there before
/// destroying it. Main thread only.
class OVAPP_EXPORT ObjectListListener
{
public:
    virtual ~ObjectListListener();

    /// `document` is the active document, whichever one the notification was made for; null when
    /// there is none.
    virtual void updateObjectListListener(Doc::Document* document) = 0;
};

} // namespace App
