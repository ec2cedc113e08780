#include "process/CrashHandler.h"

#include "process/FatalSignals.h"
#include "process/Output.h"

#include <atomic>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>

#ifdef Q_OS_WIN
#include <qt_windows.h>
#else
#include <unistd.h>
#endif

namespace Host {

namespace {

/// The end of the message; null if there is no activity. A crash may occur anywhere, so the
/// handlers use only data that exists before.
std::atomic<const QByteArray*> activityText{nullptr};
#ifndef Q_OS_WIN
/// The process that created the handler. The handler does not affect its forked children.
pid_t handledProcess = 0;
#endif
std::terminate_handler previousTerminateHandler = nullptr;
#ifdef Q_OS_WIN
LPTOP_LEVEL_EXCEPTION_FILTER previousFilter = nullptr;
#endif

void writeError(const char* text, std::size_t size)
{
#ifdef Q_OS_WIN
    DWORD written = 0;
    WriteFile(GetStdHandle(STD_ERROR_HANDLE), text, static_cast<DWORD>(size), &written, nullptr);
#else
    [[maybe_unused]] const ssize_t written = ::write(STDERR_FILENO, text, size);
#endif
}

bool isForkedChild()
{
#ifdef Q_OS_WIN
    return false;
#else
    return ::getpid() != handledProcess;
#endif
}

[[noreturn]] void reportAndExit(const char* reason)
{
    if (const QByteArray* text = activityText.exchange(nullptr)) {
        constexpr char prefix[] = "ovapp-host: ended by ";
        writeError(prefix, sizeof prefix - 1);
        writeError(reason, std::strlen(reason));
        writeError(text->constData(), static_cast<std::size_t>(text->size()));
    }
    std::_Exit(Failure);
}

void handleExit()
{
    if (!activityText || isForkedChild())
        return;
    std::fflush(nullptr);
    reportAndExit("a call of exit");
}

void handleSignal(int signal)
{
    if (isForkedChild()) {
        std::signal(signal, SIG_DFL);
        std::raise(signal);
        return;
    }
    const FatalSignal* known = fatalSignals;
    while (known->name && known->number != signal)
        ++known;
    reportAndExit(known->name ? known->name : "a signal");
}

#ifndef Q_OS_WIN
/// Handlers run on a stack of their own, since the normal one may have overflowed.
void setAlternateStack()
{
    static char buffer[1 << 16];
    stack_t stack = {};
    if (::sigaltstack(nullptr, &stack) != 0 || !(stack.ss_flags & SS_DISABLE))
        return;
    stack.ss_sp = buffer;
    stack.ss_size = sizeof buffer;
    stack.ss_flags = 0;
    ::sigaltstack(&stack, nullptr);
}
#endif

void setHandler(int signal)
{
#ifdef Q_OS_WIN
    std::signal(signal, handleSignal);
#else
    struct sigaction action = {};
    action.sa_handler = handleSignal;
    action.sa_flags = SA_ONSTACK;
    ::sigaction(signal, &action, nullptr);
#endif
}

} // namespace

CrashHandler::CrashHandler()
{
    [[maybe_unused]] static const int registered = std::atexit(handleExit);
    previousTerminateHandler = std::set_terminate([] {
        if (isForkedChild())
            std::abort();
        reportAndExit(escapeControlCharacters(describeCurrentException()).toUtf8());
    });
#ifdef Q_OS_WIN
    previousFilter = SetUnhandledExceptionFilter(
        [](EXCEPTION_POINTERS*) -> LONG { reportAndExit("an exception of the system"); });
#else
    handledProcess = ::getpid();
    setAlternateStack();
#endif
    for (const FatalSignal* signal = fatalSignals; signal->name; ++signal)
        setHandler(signal->number);
}

CrashHandler::~CrashHandler()
{
    activityText = nullptr;
    for (const FatalSignal* signal = fatalSignals; signal->name; ++signal)
        std::signal(signal->number, SIG_DFL);
#ifdef Q_OS_WIN
    SetUnhandledExceptionFilter(previousFilter);
#endif
    std::set_terminate(previousTerminateHandler);
}

void CrashHandler::setActivity(const QString& activity)
{
    activityText = nullptr;
    _text = QStringLiteral(" while %1\n").arg(escapeControlCharacters(activity)).toUtf8();
    activityText = &_text;
}

} // namespace Host
