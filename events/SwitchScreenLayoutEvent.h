#pragma once

#include <ovapp_export.h>

#include <QEvent>

namespace Core {

/// Requests that a Qt object switches to the screen layout for a board type.
///
/// The library itself never posts this event: create it with `new` and pass it to
/// `QCoreApplication::postEvent`, on any thread. It is handled on the receiver's thread.
class OVAPP_EXPORT SwitchScreenLayoutEvent : public QEvent
{
public:
    /// The value that `type()` returns.
    static constexpr Type eventType = static_cast<Type>(QEvent::User + 106);

    /// Creates an event with this board type.
    explicit SwitchScreenLayoutEvent(int boardType);
    ~SwitchScreenLayoutEvent() override;

    /// Returns the board type. Any number is stored unchanged.
    int boardType() const;

private:
    int _boardType;
};

} // namespace Core
