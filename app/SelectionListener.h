#pragma once

#include <ovapp_export.h>

namespace Doc {
class Document;
} // namespace Doc

namespace App {

/// Told when another selection of objects has been made. The library never notifies of it: whoever
/// makes the selection does.
/// Register it with `Application`, and remove it there before destroying it. Main thread only.
class OVAPP_EXPORT SelectionListener
{
public:
    virtual ~SelectionListener();

    /// `document` is the active document, whichever one the notification was made for; null when
    /// there is none.
    virtual void updateSelectionListener(Doc::Document* document) = 0;
};

} // namespace App
