#include <events/SwitchScreenLayoutEvent.h>

namespace Core {

SwitchScreenLayoutEvent::SwitchScreenLayoutEvent(int boardType)
    : QEvent(eventType), _boardType(boardType)
{
}

SwitchScreenLayoutEvent::SwitchScreenLayoutEvent(const SwitchScreenLayoutEvent& other) = default;

SwitchScreenLayoutEvent&
SwitchScreenLayoutEvent::operator=(const SwitchScreenLayoutEvent& other) = default;

SwitchScreenLayoutEvent::~SwitchScreenLayoutEvent() = default;

int SwitchScreenLayoutEvent::boardType() const
{
    return _boardType;
}

} // namespace Core
