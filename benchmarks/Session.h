#pragma once

#include <QCoreApplication>
#include <QTemporaryDir>

#include <string>

/// The common parts of the benchmark programs.
///
/// A benchmark is named "group/side" or "group/side/size". The side "ovapp" is this library; it is
/// compared with the other sides of the group that have the same size. A side may have a target,
/// which is set next to the registration of the benchmark:
///
///     benchmark::RegisterBenchmark("Notification/ovapp/1000", notifyThroughApplication, 1000);
///     benchmark::RegisterBenchmark("Notification/bare loop/1000", notifyInBareLoop, 1000);
///     Bench::setTargetRatio("Notification/bare loop/1000", 1.5);
///
/// compare.py creates the table from the JSON output.
namespace Bench {

/// Sets the target that the library takes at most `ratio` times as long as this benchmark.
void setTargetRatio(const std::string& name, double ratio);
/// Sets the target that this benchmark takes at least `ratio` times as long as the library.
void setTargetSpeedup(const std::string& name, double ratio);

/// The Qt application and a temporary directory for all files of the run, which isolates it from
/// other runs and from the user's files.
class Session
{
public:
    Session(int& argc, char** argv);

    QString directoryPath() const;

    /// Calls `Application::init` with the directory as its application directory.
    void startApplication() const;

    /// Runs the registered benchmarks that the command line selects; returns the exit code.
    int run();

private:
    int& _argc;
    char** _argv;
    QCoreApplication _qtApplication;
    QTemporaryDir _directory;
};

} // namespace Bench
