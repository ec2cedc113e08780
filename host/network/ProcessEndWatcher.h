#pragma once

#include <QtGlobal>

#include <functional>
#include <memory>

namespace Host {

/// Sees when a process ends, which need not be a child of this one.
class ProcessEndWatcher
{
public:
    /// Calls a function once, from the event loop of the thread that made the watcher, when the
    /// process has ended or if it already has. The identifier has to be a fresh one: in time the
    /// system gives that of a process that has ended to another.
    ProcessEndWatcher(qint64 pid, std::function<void()> onEnd);
    ProcessEndWatcher(const ProcessEndWatcher&) = delete;
    ProcessEndWatcher& operator=(const ProcessEndWatcher&) = delete;
    ~ProcessEndWatcher();

    /// False where the system has no way to tell (Unix other than Linux, Linux before 5.3) or
    /// refuses: the function is never called then.
    bool isWatching() const;

private:
    struct Private;
    std::unique_ptr<Private> d;
};

} // namespace Host
