#include <events/SelectionChangeEvent.h>

namespace App {

SelectionChangeEvent::SelectionChangeEvent() : QEvent(eventType)
{
}

SelectionChangeEvent::~SelectionChangeEvent() = default;

} // namespace App
