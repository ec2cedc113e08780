#pragma once

#include <QCoreApplication>
#include <QTemporaryDir>

#include <string>

/// What every benchmark program here is made of.
///
/// A benchmark is named "group/side" or "group/side/size". The side "ovapp" is this library; the
/// other sides of the group, at the same size, are what it is compared with. A side may carry a
/// wanted ratio, which is declared where the benchmark is:
///
///     benchmark::RegisterBenchmark("Notification/ovapp/1000", notifyThroughApplication, 1000);
///     benchmark::RegisterBenchmark("Notification/bare loop/1000", notifyInBareLoop, 1000);
///     Bench::wantAtMost("Notification/bare loop/1000", 1.5);
///
/// compare.py makes the table from the JSON of a run.
namespace Bench {

/// Wants the library to take at most `ratio` times as long as the benchmark named.
void wantAtMost(const std::string& name, double ratio);
/// Wants the benchmark named to take at least `ratio` times as long as the library.
void wantFaster(const std::string& name, double ratio);

/// One run of a program: the Qt application, and a temporary directory for all that is written, so
/// that no run sees another's files or the user's.
class Session
{
public:
    Session(int& argc, char** argv);

    QString directoryPath() const;

    /// `Application::init` with its files in the directory; `Application::destruct` ends it.
    void startApplication() const;

    /// Runs the registered benchmarks that the command line asks for; returns the exit status.
    int run();

private:
    int& _argc;
    char** _argv;
    QCoreApplication _qtApplication;
    QTemporaryDir _directory;
};

} // namespace Bench
