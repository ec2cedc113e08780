#pragma once

#include <QString>

namespace Host {

/// Keeps a program from ending in silence. If it ends while this lives, by a crash, by an exception
/// that nobody catches or by a call of exit, on any thread, then standard error says by what, and
/// what the program was about, and the status is `Failure`; no core is dumped. One at a time.
class CrashHandler
{
public:
    CrashHandler();
    CrashHandler(const CrashHandler&) = delete;
    CrashHandler& operator=(const CrashHandler&) = delete;
    /// Crashes end the program as the system has it again.
    ~CrashHandler();

    /// Says what the program is about from now on, in words that follow "while". Nothing is said
    /// before the first of them.
    void setActivity(const QString& activity);

private:
    QByteArray _words;
};

} // namespace Host
