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
    // kill() would send the signal to a group of processes, which includes this one.
    if (pid <= 0)
        return false;
    return ::kill(static_cast<pid_t>(pid), SIGINT) == 0;
#endif
}

} // namespace System
