#include "process/FatalSignals.h"

#include <csignal>
#include <exception>

namespace Host {

const FatalSignal fatalSignals[] = {
#ifndef Q_OS_WIN
    // Windows has them for one thread at a time, and exceptions of its own for all.
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
    } catch (const std::exception& known) {
        return QStringLiteral("an exception that nobody caught (%1)")
            .arg(QString::fromLocal8Bit(known.what()));
    } catch (...) {
        return QStringLiteral("an exception of an unknown type that nobody caught");
    }
}

} // namespace Host
