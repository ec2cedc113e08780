#pragma once

#include <functional>
#include <memory>

namespace Host {

/// Takes the interrupts meant for this program (Ctrl+C at the keyboard, and on Unix the request to
/// terminate and the end of the terminal) for as long as it lives: instead of ending the program,
/// each one calls a function from the event loop of the thread that made the watcher. One watcher
/// at a time. A signal that the program was started to ignore (`nohup`) stays ignored.
class InterruptWatcher
{
public:
    explicit InterruptWatcher(std::function<void()> onInterrupt);
    InterruptWatcher(const InterruptWatcher&) = delete;
    InterruptWatcher& operator=(const InterruptWatcher&) = delete;
    /// Interrupts do again what they did before.
    ~InterruptWatcher();

private:
    struct Private;
    std::unique_ptr<Private> d;
};

} // namespace Host
