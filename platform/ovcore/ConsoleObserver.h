#pragma once

#include <ovcore_export.h>

class QByteArray;

namespace Core {

/// Receives the lines of the console service; attach it with `ConsoleSingleton::attachObserver`
/// and detach it before it is destroyed.
class OVCORE_EXPORT ConsoleObserver
{
public:
    /// What kind of line it is: written by `log` or by `warning`.
    enum class Severity
    {
        Log,
        Warning
    };

    virtual ~ConsoleObserver();

    /// Receives one line: the formatted text as it is, with no terminator added and none removed.
    /// Called on the thread that logs, never on two threads at once.
    virtual void write(Severity severity, const QByteArray& line) = 0;
};

} // namespace Core
