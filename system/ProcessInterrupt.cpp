#include <system/ProcessInterrupt.h>

#ifndef Q_OS_WIN
#include <signal.h>
#endif

namespace System {

bool interruptProcess(qint64 pid)
{
#ifdef Q_OS_WIN
    Q_UNUSED(pid)
    return false;
#else
    // Such a number would have the signal sent to a whole group of processes, this one included.
    if (pid <= 0)
        return false;
    return ::kill(static_cast<pid_t>(pid), SIGINT) == 0;
#endif
}

} // namespace System
