#include "process/FatalSignals.h"

#include <csignal>
#include <exception>

namespace Host {

const FatalSignal fatalSignals[] = {
#ifndef Q_OS_WIN
    // On Windows a handler of these is for one thread; it has exceptions for all threads.
    {SIGBUS, "SIGBUS"},   {SIGFPE, "SIGFPE"},   {SIGILL, "SIGILL"},
    {SIGSEGV, "SIGSEGV"}, {SIGTRAP, "SIGTRAP"},
#endif
    {SIGABRT, "SIGABRT"}, {0, nullptr}};

QString describeCurrentException()
{
    const std::exception_ptr exception = std::current_exception();
    if (!exception)
        return QStringLiteral("a call of std::terminate");
    try {
        std::rethrow_exception(exception);
    } catch (const std::exception& standard) {
        return QStringLiteral("an uncaught exception (%1)")
            .arg(QString::fromLocal8Bit(standard.what()));
    } catch (...) {
        return QStringLiteral("an uncaught exception of an unknown type");
    }
}

} // namespace Host
