#pragma once

#include <ovapp_export.h>

namespace Doc {
class Document;
} // namespace Doc

namespace App {

/// A listener that is called when a property of a document's objects has changed. The library
/// itself never sends this notification: the code that changes the property calls
/// `Application::notifyPropertyListeners`.
///
/// Register it with `Application`. Main thread only, including its destruction.
class OVAPP_EXPORT PropertyListener
{
public:
    /// Removes the listener from the application object if it is still registered.
    virtual ~PropertyListener();

    /// All arguments are passed on unchanged; the meaning of `flag` and `value` is
    /// application-defined.
    virtual void updatePropertyListener(Doc::Document* document, bool flag, int value) = 0;
};

} // namespace App
