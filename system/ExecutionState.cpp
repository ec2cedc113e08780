#include <system/ExecutionState.h>

#ifdef Q_OS_WIN
#include <qt_windows.h>
#else
#include <utility>
#endif

#ifdef Q_OS_LINUX
#include <system/SleepInhibitor.h>

#include <memory>
#include <mutex>
#endif

namespace System {

#ifdef Q_OS_LINUX
namespace {

/// The threads whose requests keep the system awake, and what does so while there are any.
class Awake
{
public:
    static Awake& instance()
    {
        // Never destroyed: when another thread than those that ask ends the process, Qt's own
        // static objects go first, and what still waits must not use them then.
        static Awake* const awake = std::make_unique<Awake>().release();
        return *awake;
    }

    void setAsked(bool asked)
    {
        const std::lock_guard lock(_mutex);
        _threads += asked ? 1 : -1;
        if (_threads == 0)
            _inhibitor.reset();
        else if (!_inhibitor)
            _inhibitor = std::make_unique<SleepInhibitor>();
    }

private:
    std::mutex _mutex;
    int _threads = 0;
    std::unique_ptr<SleepInhibitor> _inhibitor;
};

/// One thread's request, which ends with the thread.
class Request
{
public:
    Request() = default;
    Request(const Request&) = delete;
    Request& operator=(const Request&) = delete;
    ~Request() { exchange(ExecutionContinuous); }

    quint32 exchange(quint32 flags)
    {
        // Without ExecutionContinuous what holds goes on.
        const bool holds = flags & ExecutionContinuous ? flags & ExecutionSystemRequired : _holds;
        if (std::exchange(_holds, holds) != holds)
            Awake::instance().setAsked(holds);
        return std::exchange(_flags, flags);
    }

private:
    quint32 _flags = ExecutionContinuous;
    bool _holds = false;
};

} // namespace
#endif

quint32 setThreadExecutionState(quint32 flags)
{
#if defined(Q_OS_WIN)
    return ::SetThreadExecutionState(flags);
#elif defined(Q_OS_LINUX)
    static thread_local Request request;
    return request.exchange(flags);
#else
    static thread_local quint32 state = ExecutionContinuous;
    return std::exchange(state, flags);
#endif
}

} // namespace System
