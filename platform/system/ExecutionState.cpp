#include <system/ExecutionState.h>

#ifdef Q_OS_WIN
#include <qt_windows.h>
#else
#include <utility>
#endif

namespace System {

quint32 setThreadExecutionState(quint32 flags)
{
#ifdef Q_OS_WIN
    return ::SetThreadExecutionState(flags);
#else
    static thread_local quint32 state = ExecutionContinuous;
    return std::exchange(state, flags);
#endif
}

} // namespace System
