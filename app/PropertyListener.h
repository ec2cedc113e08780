#pragma once

#include <ovapp_export.h>

namespace Doc {
class Document;
} // namespace Doc

namespace App {

/// Told when a property of a document's objects has changed. The library never notifies of it:
/// whoever makes the change does.
/// Register it with `Application`, and remove it there before destroying it. Main thread only.
class OVAPP_EXPORT PropertyListener
{
public:
    virtual ~PropertyListener();

    /// All three are handed on from the notification; the meaning of `flag` and `value` is that of
    /// whoever notifies.
    virtual void updatePropertyListener(Doc::Document* document, bool flag, int value) = 0;
};

} // namespace App
