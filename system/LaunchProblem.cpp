#include <system/LaunchProblem.h>

#ifdef Q_OS_UNIX
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

namespace System {

#ifdef Q_OS_UNIX

QString launchProblem()
{
    // More than Qt takes for a launch.
    std::array<int, 12> files;
    int problem = 0;
    for (int& file : files) {
        file = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
        if (file < 0)
            problem = errno;
    }
    for (const int file : files) {
        if (file >= 0)
            ::close(file);
    }
    if (problem != 0)
        return qt_error_string(problem);

    const pid_t process = ::fork();
    if (process == 0)
        ::_exit(0);
    if (process < 0)
        return qt_error_string(errno);
    while (::waitpid(process, nullptr, 0) < 0 && errno == EINTR) {
    }
    return QString();
}

#else

QString launchProblem()
{
    return QString();
}

#endif

} // namespace System
