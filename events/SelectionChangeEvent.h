#pragma once

#include <ovapp_export.h>

#include <QEvent>

namespace App {

/// Tells a Qt object that another selection of objects has been made; the type is all it says.
/// Post it with `Application::postSelectionChangedEvent`. It is handled on the receiver's thread.
class OVAPP_EXPORT SelectionChangeEvent : public QEvent
{
public:
    /// What `type()` returns.
    static constexpr Type eventType = static_cast<Type>(QEvent::User + 101);

    /// One event is as good as another.
    /// @{
    SelectionChangeEvent();
    SelectionChangeEvent(const SelectionChangeEvent& other);
    SelectionChangeEvent& operator=(const SelectionChangeEvent& other);
    /// @}
    ~SelectionChangeEvent() override;
};

} // namespace App
