#include "network/ProcessEndWatcher.h"

#include <QObject>
#include <QTimer>

#ifdef Q_OS_WIN
#include <QWinEventNotifier>

#include <qt_windows.h>
#else
#include <QSocketNotifier>

#include <cerrno>
#include <sys/syscall.h>
#include <unistd.h>
#endif

namespace Host {

namespace {

#ifdef Q_OS_WIN

using Handle = HANDLE;
using Notifier = QWinEventNotifier;
const Handle noHandle = nullptr;

Handle openProcess(qint64 pid)
{
    return OpenProcess(SYNCHRONIZE, FALSE, static_cast<DWORD>(pid));
}

bool hasEnded()
{
    return GetLastError() == ERROR_INVALID_PARAMETER;
}

void close(Handle handle)
{
    CloseHandle(handle);
}

std::unique_ptr<Notifier> makeNotifier(Handle handle)
{
    return std::make_unique<Notifier>(handle);
}

#else

using Handle = int;
using Notifier = QSocketNotifier;
constexpr Handle noHandle = -1;

Handle openProcess(qint64 pid)
{
#ifdef SYS_pidfd_open
    return static_cast<Handle>(::syscall(SYS_pidfd_open, static_cast<pid_t>(pid), 0));
#else
    Q_UNUSED(pid)
    errno = ENOSYS;
    return noHandle;
#endif
}

bool hasEnded()
{
    return errno == ESRCH;
}

void close(Handle handle)
{
    ::close(handle);
}

std::unique_ptr<Notifier> makeNotifier(Handle handle)
{
    return std::make_unique<Notifier>(handle, QSocketNotifier::Read);
}

#endif

} // namespace

struct ProcessEndWatcher::Private
{
    Handle process = noHandle;
    std::unique_ptr<Notifier> notifier;
    /// Calls the function where there is nothing left to watch.
    QTimer soon;
    bool isWatching = false;
};

ProcessEndWatcher::ProcessEndWatcher(qint64 pid, std::function<void()> onEnd)
    : d(std::make_unique<Private>())
{
    d->process = openProcess(pid);
    if (d->process != noHandle) {
        d->isWatching = true;
        d->notifier = makeNotifier(d->process);
        QObject::connect(d->notifier.get(), &Notifier::activated, d->notifier.get(),
                         [this, onEnd = std::move(onEnd)] {
                             d->notifier->setEnabled(false);
                             onEnd();
                         });
    } else if (hasEnded()) {
        d->isWatching = true;
        d->soon.setSingleShot(true);
        QObject::connect(&d->soon, &QTimer::timeout, &d->soon, std::move(onEnd));
        d->soon.start(0);
    }
}

ProcessEndWatcher::~ProcessEndWatcher()
{
    d->notifier.reset();
    if (d->process != noHandle)
        close(d->process);
}

bool ProcessEndWatcher::isWatching() const
{
    return d->isWatching;
}

} // namespace Host
