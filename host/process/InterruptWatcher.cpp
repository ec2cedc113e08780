#include "process/InterruptWatcher.h"

#include <QObject>

#ifdef Q_OS_WIN
#include <qt_windows.h>

#include <mutex>
#else
#include <QSocketNotifier>

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <iterator>
#include <unistd.h>
#endif

namespace Host {

#ifdef Q_OS_WIN

namespace {

std::mutex mutex;
/// The object in whose thread the function is called; null if there is no watcher.
QObject* target = nullptr;
std::function<void()> targetFunction;

/// The system calls this on a thread of its own.
BOOL WINAPI handleInterrupt(DWORD event)
{
    const std::lock_guard<std::mutex> lock(mutex);
    if (!target || (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT))
        return FALSE;
    QMetaObject::invokeMethod(target, targetFunction, Qt::QueuedConnection);
    return TRUE;
}

} // namespace

struct InterruptWatcher::Private
{
    QObject context;
};

InterruptWatcher::InterruptWatcher(std::function<void()> onInterrupt)
    : d(std::make_unique<Private>())
{
    {
        const std::lock_guard<std::mutex> lock(mutex);
        targetFunction = std::move(onInterrupt);
        target = &d->context;
    }
    SetConsoleCtrlHandler(handleInterrupt, TRUE);
}

InterruptWatcher::~InterruptWatcher()
{
    SetConsoleCtrlHandler(handleInterrupt, FALSE);
    const std::lock_guard<std::mutex> lock(mutex);
    target = nullptr;
}

#else

namespace {

constexpr int watchedSignals[] = {SIGINT, SIGTERM, SIGHUP};

/// The end of the pipe to which the signal handler writes.
volatile std::sig_atomic_t pipeToWrite = -1;

void handleInterrupt(int)
{
    const int error = errno;
    const char byte = 0;
    // If the pipe is full, enough interrupts are pending.
    [[maybe_unused]] const ssize_t written = ::write(pipeToWrite, &byte, 1);
    errno = error;
}

} // namespace

struct InterruptWatcher::Private
{
    int pipe[2] = {-1, -1};
    std::unique_ptr<QSocketNotifier> notifier;
    struct sigaction previousActions[std::size(watchedSignals)];
};

InterruptWatcher::InterruptWatcher(std::function<void()> onInterrupt)
    : d(std::make_unique<Private>())
{
    if (::pipe(d->pipe) != 0)
        return;
    for (const int end : d->pipe) {
        ::fcntl(end, F_SETFL, O_NONBLOCK);
        ::fcntl(end, F_SETFD, FD_CLOEXEC);
    }
    pipeToWrite = d->pipe[1];
    d->notifier = std::make_unique<QSocketNotifier>(d->pipe[0], QSocketNotifier::Read);
    QObject::connect(d->notifier.get(), &QSocketNotifier::activated, d->notifier.get(),
                     [this, onInterrupt = std::move(onInterrupt)] {
                         char byte = 0;
                         if (::read(d->pipe[0], &byte, 1) == 1)
                             onInterrupt();
                     });
    struct sigaction action = {};
    action.sa_handler = handleInterrupt;
    action.sa_flags = SA_RESTART;
    struct sigaction* previous = d->previousActions;
    for (const int signal : watchedSignals) {
        ::sigaction(signal, nullptr, previous);
        if (previous->sa_handler != SIG_IGN)
            ::sigaction(signal, &action, nullptr);
        ++previous;
    }
}

InterruptWatcher::~InterruptWatcher()
{
    if (!d->notifier)
        return;
    const struct sigaction* previous = d->previousActions;
    for (const int signal : watchedSignals)
        ::sigaction(signal, previous++, nullptr);
    d->notifier.reset();
    pipeToWrite = -1;
    ::close(d->pipe[0]);
    ::close(d->pipe[1]);
}

#endif

} // namespace Host
