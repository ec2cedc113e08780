#pragma once

#include <chrono>

namespace Host {

/// From now on, interrupts no longer end the program: Ctrl+C, and on Unix also the signals SIGTERM
/// and SIGHUP. A second one ends it as usual. A signal that was ignored when the program was
/// started (`nohup`) remains ignored.
void catchInterrupts();
/// Returns whether there was an interrupt since then.
bool isInterrupted();

/// The interval at which commands call `isInterrupted`.
constexpr std::chrono::milliseconds interruptPollInterval(50);

} // namespace Host
