#include <ovcore/SystemTimerManager.h>

namespace Core {

void SystemTimerManager::init()
{
}

void SystemTimerManager::destruct()
{
}

} // namespace Core
