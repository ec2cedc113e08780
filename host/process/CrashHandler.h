#pragma once

#include <QString>

namespace Host {

/// Reports how the program ends. If it crashes, throws an uncaught exception or calls `exit`, on
/// any thread, while an object of this class exists, the reason and the current activity are
/// printed on standard error, the exit code is `Failure`, and no core is dumped. Forked children
/// are not affected. There may be one object at a time.
class CrashHandler
{
public:
    CrashHandler();
    CrashHandler(const CrashHandler&) = delete;
    CrashHandler& operator=(const CrashHandler&) = delete;
    /// Restores the previous handling of crashes.
    ~CrashHandler();

    /// Sets the current activity, as a clause that follows "while". Nothing is printed before the
    /// first call.
    void setActivity(const QString& activity);

private:
    QByteArray _text;
};

} // namespace Host
