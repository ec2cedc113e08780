#include "Interrupts.h"

#include <QtGlobal>

#include <csignal>

namespace Host {

namespace {

volatile std::sig_atomic_t interrupted = 0;

void handleInterrupt(int signal)
{
    interrupted = 1;
    std::signal(signal, SIG_DFL);
}

} // namespace

void catchInterrupts()
{
#ifdef Q_OS_WIN
    constexpr int signals[] = {SIGINT, SIGBREAK};
#else
    constexpr int signals[] = {SIGINT, SIGTERM, SIGHUP};
#endif
    for (const int signal : signals) {
        if (std::signal(signal, handleInterrupt) == SIG_IGN)
            std::signal(signal, SIG_IGN);
    }
}

bool isInterrupted()
{
    return interrupted != 0;
}

} // namespace Host
