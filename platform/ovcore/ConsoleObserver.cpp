#include <ovcore/ConsoleObserver.h>

namespace Core {

ConsoleObserver::~ConsoleObserver() = default;

} // namespace Core
