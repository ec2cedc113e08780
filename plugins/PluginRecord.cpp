#include <plugins/PluginRecord.h>

namespace App {

QString PluginRecord::verdictName() const
{
    // In the order of the enumeration.
    static const char* const names[] = {"accepted",      "left-out",     "no-plugin",
                                        "other-version", "no-interface", "other-board",
                                        "no-identifier", "exception"};
    return QLatin1String(names[static_cast<int>(verdict)]);
}

} // namespace App
