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

/// Null while there is nothing to say. A crash may be anywhere, so no more than this is touched.
std::atomic<const QByteArray*> wordsToSay{nullptr};
#ifndef Q_OS_WIN
/// The process that the handler was created in. Children that it forks are left alone.
pid_t handledProcess = 0;
#endif
std::terminate_handler formerTerminateHandler = nullptr;
#ifdef Q_OS_WIN
LPTOP_LEVEL_EXCEPTION_FILTER formerFilter = nullptr;
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

[[noreturn]] void sayAndEnd(const char* ending)
{
    if (const QByteArray* words = wordsToSay.exchange(nullptr)) {
        constexpr char beginning[] = "ovapp-host: ended by ";
        writeError(beginning, sizeof beginning - 1);
        writeError(ending, std::strlen(ending));
        writeError(words->constData(), static_cast<std::size_t>(words->size()));
    }
    std::_Exit(Failure);
}

void sayAtExit()
{
    if (!wordsToSay || isForkedChild())
        return;
    std::fflush(nullptr);
    sayAndEnd("a call of exit");
}

void handleSignal(int signal)
{
    if (isForkedChild()) {
        std::signal(signal, SIG_DFL);
        std::raise(signal);
        return;
    }
    const FatalSignal* crash = fatalSignals;
    while (crash->name && crash->number != signal)
        ++crash;
    sayAndEnd(crash->name ? crash->name : "a signal");
}

#ifndef Q_OS_WIN
/// A stack that has overflown has no room for a handler.
void makeRoomForHandlers()
{
    static char room[1 << 16];
    stack_t stack = {};
    if (::sigaltstack(nullptr, &stack) != 0 || !(stack.ss_flags & SS_DISABLE))
        return;
    stack.ss_sp = room;
    stack.ss_size = sizeof room;
    stack.ss_flags = 0;
    ::sigaltstack(&stack, nullptr);
}
#endif

void handle(int signal)
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
    [[maybe_unused]] static const int registered = std::atexit(sayAtExit);
    formerTerminateHandler = std::set_terminate([] {
        if (isForkedChild())
            std::abort();
        sayAndEnd(escapeControlCharacters(describeCurrentException()).toUtf8());
    });
#ifdef Q_OS_WIN
    formerFilter = SetUnhandledExceptionFilter(
        [](EXCEPTION_POINTERS*) -> LONG { sayAndEnd("an exception of the system"); });
#else
    handledProcess = ::getpid();
    makeRoomForHandlers();
#endif
    for (const FatalSignal* crash = fatalSignals; crash->name; ++crash)
        handle(crash->number);
}

CrashHandler::~CrashHandler()
{
    wordsToSay = nullptr;
    for (const FatalSignal* crash = fatalSignals; crash->name; ++crash)
        std::signal(crash->number, SIG_DFL);
#ifdef Q_OS_WIN
    SetUnhandledExceptionFilter(formerFilter);
#endif
    std::set_terminate(formerTerminateHandler);
}

void CrashHandler::setActivity(const QString& activity)
{
    wordsToSay = nullptr;
    _words = QStringLiteral(" while %1\n").arg(escapeControlCharacters(activity)).toUtf8();
    wordsToSay = &_words;
}

} // namespace Host
