#pragma once

#include <QString>

#include <sys/types.h>
#include <thread>

namespace System {

/// Asks logind to keep the system awake for as long as this lives.
///
/// Neither the constructor nor the destructor waits for an answer. Where there is nobody to ask, or
/// nobody who answers, nothing happens; nothing is printed then, and Qt's D-Bus is not even
/// entered, since it waits without a limit for a bus that does not answer. Works without an event
/// loop of the program's and before there is a QCoreApplication.
class SleepInhibitor
{
public:
    SleepInhibitor();
    SleepInhibitor(const SleepInhibitor&) = delete;
    SleepInhibitor& operator=(const SleepInhibitor&) = delete;
    ~SleepInhibitor();

private:
    /// Whether the bus has answered to the knock on this socket, which it closes.
    bool answers(int knocking) const;
    /// Asks for an inhibitor and holds it, until the end.
    void ask(const QString& busAddress) const;
    /// Waits for the end, that long at most (-1: without a limit), or for the socket to be
    /// readable.
    bool endsWithin(int milliseconds, int socket = -1) const;

    const QString _program;
    /// The process that the thread is one of.
    const pid_t _process;
    /// Readable when the thread is to end.
    const int _end;
    std::thread _thread;
};

} // namespace System
