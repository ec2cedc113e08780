#pragma once

#include <ovcore_export.h>

class QByteArray;

namespace Core {

/// Receives the lines that are logged. Attach it with `ConsoleSingleton::attachObserver`, and
/// detach it before destroying it.
class OVCORE_EXPORT ConsoleObserver
{
public:
    /// The severity of a line: logged with `log` or with `warning`.
    enum class Severity
    {
        Log,
        Warning
    };

    virtual ~ConsoleObserver();

    /// Receives one line: the formatted text, without an added terminator. Called on the thread
    /// that logs, but never on two threads at once.
    virtual void write(Severity severity, const QByteArray& line) = 0;
};

} // namespace Core
