#include "process/Utf8Console.h"

#include <QtGlobal>

#ifdef Q_OS_WIN
#include <qt_windows.h>
#endif

namespace Host {

#ifdef Q_OS_WIN

Utf8Console::Utf8Console() : _formerCodePage(GetConsoleOutputCP())
{
    SetConsoleOutputCP(CP_UTF8);
}

Utf8Console::~Utf8Console()
{
    SetConsoleOutputCP(_formerCodePage);
}

#else

Utf8Console::Utf8Console() : _formerCodePage(0)
{
}

Utf8Console::~Utf8Console() = default;

#endif

} // namespace Host
