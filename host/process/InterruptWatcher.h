#pragma once

#include <functional>
#include <memory>

namespace Host {

/// Handles interrupts for its lifetime: Ctrl+C, and on Unix also the signals SIGTERM and SIGHUP.
/// Instead of ending the program, each one calls a function from the event loop of the thread that
/// created the watcher. There may be one watcher at a time. A signal that was ignored when the
/// program was started (`nohup`) remains ignored.
class InterruptWatcher
{
public:
    explicit InterruptWatcher(std::function<void()> onInterrupt);
    InterruptWatcher(const InterruptWatcher&) = delete;
    InterruptWatcher& operator=(const InterruptWatcher&) = delete;
    /// Restores the previous handling.
    ~InterruptWatcher();

private:
    struct Private;
    std::unique_ptr<Private> d;
};

} // namespace Host
