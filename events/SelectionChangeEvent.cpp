#include <events/SelectionChangeEvent.h>

namespace App {

SelectionChangeEvent::SelectionChangeEvent() : QEvent(eventType)
{
}

SelectionChangeEvent::SelectionChangeEvent(const SelectionChangeEvent& other) = default;

SelectionChangeEvent& SelectionChangeEvent::operator=(const SelectionChangeEvent& other) = default;

SelectionChangeEvent::~SelectionChangeEvent() = default;

} // namespace App
