#pragma once

#include <ovcore_export.h>

namespace Core {

/// The program's version.
class OVCORE_EXPORT Version
{
public:
    /// Returns the version as a NUL-terminated string, "major.minor.patch".
    static const char* versionString();
};

} // namespace Core
