#pragma once

#include <ovapp_export.h>

#include <QEvent>

namespace Core {

/// Tells a Qt object to switch the screen layout to the one of a board type. The library posts
/// none itself: make one with `new` and hand it to `QCoreApplication::postEvent`, on any thread. It
/// is handled on the receiver's.
class OVAPP_EXPORT SwitchScreenLayoutEvent : public QEvent
{
public:
    /// What `type()` returns.
    static constexpr Type eventType = static_cast<Type>(QEvent::User + 106);

    /// An event with that board type, or with that of another event.
    /// @{
    explicit SwitchScreenLayoutEvent(int boardType);
    SwitchScreenLayoutEvent(const SwitchScreenLayoutEvent& other);
    SwitchScreenLayoutEvent& operator=(const SwitchScreenLayoutEvent& other);
    /// @}
    ~SwitchScreenLayoutEvent() override;

    /// The board type as it was given, whatever number that is.
    int boardType() const;

private:
    int _boardType;
};

} // namespace Core
