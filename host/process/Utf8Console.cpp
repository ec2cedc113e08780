#include "process/Utf8Console.h"

#include <QtGlobal>

#ifdef Q_OS_WIN
#include <qt_windows.h>
#endif

namespace Host {

#ifdef Q_OS_WIN

Utf8Console::Utf8Console() : _previousCodePage(GetConsoleOutputCP())
{
    SetConsoleOutputCP(CP_UTF8);
}

Utf8Console::~Utf8Console()
{
    SetConsoleOutputCP(_previousCodePage);
}

#else

Utf8Console::Utf8Console() : _previousCodePage(0)
{
}

Utf8Console::~Utf8Console() = default;

#endif

} // namespace Host
