#include "process/StandardStreams.h"

#include <QtGlobal>

#ifndef Q_OS_WIN
#include <csignal>
#include <fcntl.h>
#include <unistd.h>
#endif

namespace Host {

#ifdef Q_OS_WIN

void sanitizeStandardStreams()
{
}

#else

void sanitizeStandardStreams()
{
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        // open() returns the lowest free descriptor, which is this one. Its access mode is the
        // wrong one, so that its use remains an error.
        if (::fcntl(descriptor, F_GETFD) == -1)
            ::open("/dev/null", descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY);
    }
    // Qt restores the default in the processes that it starts.
    std::signal(SIGPIPE, SIG_IGN);
}

#endif

} // namespace Host
