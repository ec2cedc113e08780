#include <system/ExecutionState.h>

#ifdef Q_OS_WIN
#include <qt_windows.h>
#else
#include <utility>
#endif

#ifdef OVSYSTEM_SLEEP_INHIBITOR
#include <system/SleepInhibitor.h>

#include <QScopeGuard>
#endif

namespace System {

#ifdef OVSYSTEM_SLEEP_INHIBITOR
namespace {

/// Keeps the system awake on behalf of the calling thread, until the thread ends at the latest.
void setSleepInhibited(bool inhibited)
{
    // A plain pointer, since the destructor of a static object may use it after the thread-local
    // objects have been destroyed.
    static thread_local SleepInhibitor* inhibitor = nullptr;
    static thread_local const auto atThreadEnd = qScopeGuard([] { setSleepInhibited(false); });
    if (!inhibited)
        std::unique_ptr<SleepInhibitor>(std::exchange(inhibitor, nullptr)).reset();
    else if (!inhibitor)
        inhibitor = std::make_unique<SleepInhibitor>().release();
}

} // namespace
#endif

quint32 setThreadExecutionState(quint32 flags)
{
#ifdef Q_OS_WIN
    return ::SetThreadExecutionState(flags);
#else
#ifdef OVSYSTEM_SLEEP_INHIBITOR
    // Without the flag, a continuous request remains in effect.
    if (flags & ExecutionContinuous)
        setSleepInhibited(flags & ExecutionSystemRequired);
#endif
    static thread_local quint32 state = ExecutionContinuous;
    return std::exchange(state, flags);
#endif
}

} // namespace System
