#include <ovcore/SystemBackupManager.h>

namespace Core {

void SystemBackupManager::init()
{
}

void SystemBackupManager::destruct()
{
}

} // namespace Core
