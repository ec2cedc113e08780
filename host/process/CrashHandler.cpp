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
std::terminate_handler previousTerminateHandler = nullptr;
#ifdef Q_OS_WIN
using SignalAction = void (*)(int);
LPTOP_LEVEL_EXCEPTION_FILTER previousFilter = nullptr;
#else
using SignalAction = struct sigaction;
/// The process that created the handler. The handler does not affect its forked children.
pid_t handledProcess = 0;
#endif
/// The actions of the fatal signals, by the signal's number.
SignalAction previousActions[NSIG] = {};

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

SignalAction ownAction()
{
#ifdef Q_OS_WIN
    return handleSignal;
#else
    SignalAction action = {};
    action.sa_handler = handleSignal;
    action.sa_flags = SA_ONSTACK;
    return action;
#endif
}

/// Sets the action and returns the previous one.
SignalAction setAction(int signal, SignalAction action)
{
#ifdef Q_OS_WIN
    return std::signal(signal, action);
#else
    SignalAction previous = {};
    ::sigaction(signal, &action, &previous);
    return previous;
#endif
}

} // namespace

CrashHandler::CrashHandler()
{
    [[maybe_unused]] static const int registered = std::atexit(handleExit);
    previousTerminateHandler = std::set_terminate([] {
        if (isForkedChild())
            std::abort();
        reportAndExit(escapeNonPrintable(describeCurrentException()).toUtf8());
    });
#ifdef Q_OS_WIN
    previousFilter = SetUnhandledExceptionFilter(
        [](EXCEPTION_POINTERS*) -> LONG { reportAndExit("an exception of the system"); });
#else
    handledProcess = ::getpid();
    setAlternateStack();
#endif
    for (const FatalSignal* signal = fatalSignals; signal->name; ++signal)
        previousActions[signal->number] = setAction(signal->number, ownAction());
}

CrashHandler::~CrashHandler()
{
    activityText = nullptr;
    for (const FatalSignal* signal = fatalSignals; signal->name; ++signal)
        setAction(signal->number, previousActions[signal->number]);
#ifdef Q_OS_WIN
    SetUnhandledExceptionFilter(previousFilter);
#endif
    std::set_terminate(previousTerminateHandler);
}

void CrashHandler::setActivity(const QString& activity)
{
    activityText = nullptr;
    _text = QStringLiteral(" while %1\n").arg(escapeNonPrintable(activity)).toUtf8();
    activityText = &_text;
}

} // namespace Host
