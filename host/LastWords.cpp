#include "LastWords.h"

#include <atomic>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>

#ifdef Q_OS_WIN
#include <qt_windows.h>
#else
#include <unistd.h>
#endif

namespace Host {

namespace {

#ifdef Q_OS_WIN
/// The others would be asked for on each thread anew.
constexpr int crashes[] = {SIGABRT};
LPTOP_LEVEL_EXCEPTION_FILTER formerFilter = nullptr;
#else
constexpr int crashes[] = {SIGABRT, SIGBUS, SIGFPE, SIGILL, SIGSEGV};
#endif

/// Null while there is nothing to say. A crash may be anywhere, so no more than these is touched.
std::atomic<const QByteArray*> wordsToSay{nullptr};
std::atomic<int> statusToEndWith{0};
std::terminate_handler formerTerminateHandler = nullptr;

[[noreturn]] void sayAndEnd()
{
    if (const QByteArray* words = wordsToSay.exchange(nullptr)) {
#ifdef Q_OS_WIN
        DWORD written = 0;
        WriteFile(GetStdHandle(STD_ERROR_HANDLE), words->constData(),
                  static_cast<DWORD>(words->size()), &written, nullptr);
#else
        [[maybe_unused]] const ssize_t written =
            ::write(STDERR_FILENO, words->constData(), static_cast<std::size_t>(words->size()));
#endif
    }
    std::_Exit(statusToEndWith);
}

void sayAtExit()
{
    if (!wordsToSay)
        return;
    std::fflush(nullptr);
    sayAndEnd();
}

} // namespace

LastWords::LastWords(const QByteArray& words, int status) : _words(words)
{
    [[maybe_unused]] static const int registered = std::atexit(sayAtExit);
    statusToEndWith = status;
    wordsToSay = &_words;
    formerTerminateHandler = std::set_terminate(sayAndEnd);
    for (const int crash : crashes)
        std::signal(crash, [](int) { sayAndEnd(); });
#ifdef Q_OS_WIN
    formerFilter = SetUnhandledExceptionFilter([](EXCEPTION_POINTERS*) -> LONG { sayAndEnd(); });
#endif
}

LastWords::~LastWords()
{
#ifdef Q_OS_WIN
    SetUnhandledExceptionFilter(formerFilter);
#endif
    for (const int crash : crashes)
        std::signal(crash, SIG_DFL);
    std::set_terminate(formerTerminateHandler);
    wordsToSay = nullptr;
}

} // namespace Host
