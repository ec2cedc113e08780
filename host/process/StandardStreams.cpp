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
    for (const int channel : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        // What is opened takes the first place that is free, this one. It is opened the wrong way
        // round, so that to use it is an error as before.
        if (::fcntl(channel, F_GETFD) == -1)
            ::open("/dev/null", channel == STDIN_FILENO ? O_WRONLY : O_RDONLY);
    }
    // The programs that Qt starts as children get the default back.
    std::signal(SIGPIPE, SIG_IGN);
}

#endif

} // namespace Host
