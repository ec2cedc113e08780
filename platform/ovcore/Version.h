#pragma once

#include <ovcore_export.h>

namespace Core {

/// The program's version.
class OVCORE_EXPORT Version
{
public:
    /// The version as NUL-terminated text, "major.minor.patch".
    static const char* versionString();
};

} // namespace Core
