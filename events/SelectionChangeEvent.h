#pragma once

#include <ovapp_export.h>

#include <QEvent>

namespace App {

/// Notifies a Qt object that the selection of objects has changed. The event carries no data.
///
/// Post it with `Application::postSelectionChangedEvent`. It is handled on the receiver's thread.
class OVAPP_EXPORT SelectionChangeEvent : public QEvent
{
public:
    /// The value that `type()` returns.
    static constexpr Type eventType = static_cast<Type>(QEvent::User + 101);

    /// Creates an event. All events of this class are equal.
    SelectionChangeEvent();
    ~SelectionChangeEvent() override;
};

} // namespace App
