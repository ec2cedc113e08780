#include <events/SwitchScreenLayoutEvent.h>

namespace Core {

SwitchScreenLayoutEvent::SwitchScreenLayoutEvent(int boardType)
    : QEvent(eventType), _boardType(boardType)
{
}

SwitchScreenLayoutEvent::~SwitchScreenLayoutEvent() = default;

int SwitchScreenLayoutEvent::boardType() const
{
    return _boardType;
}

} // namespace Core
