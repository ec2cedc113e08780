#include <ovcore/Version.h>

namespace Core {

const char* Version::versionString()
{
    return OVCORE_VERSION;
}

} // namespace Core
