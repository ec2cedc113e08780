#include "Session.h"

#include <app/Application.h>

#include <ovcore/Settings.h>

#include <benchmark/benchmark.h>

#include <QStandardPaths>

#include <cstdlib>

namespace Bench {

namespace {

/// Adds the target to the context in the JSON output, where compare.py reads it.
void addTarget(const std::string& name, const std::string& target)
{
    benchmark::AddCustomContext("target " + name, target);
}

} // namespace

void setTargetRatio(const std::string& name, double ratio)
{
    addTarget(name, "ovapp/it <= " + QString::number(ratio).toStdString());
}

void setTargetSpeedup(const std::string& name, double ratio)
{
    addTarget(name, "it/ovapp >= " + QString::number(ratio).toStdString());
}

Session::Session(int& argc, char** argv) : _argc(argc), _argv(argv), _qtApplication(argc, argv)
{
    if (!_directory.isValid())
        qFatal("cannot create a temporary directory: %s", qPrintable(_directory.errorString()));
    QStandardPaths::setTestModeEnabled(true);
}

QString Session::directoryPath() const
{
    return _directory.path();
}

void Session::startApplication() const
{
    Core::Settings::instance().setApplicationDirPath(_directory.path());
    App::Application::init();
}

int Session::run()
{
    benchmark::Initialize(&_argc, _argv);
    if (benchmark::ReportUnrecognizedArguments(_argc, _argv))
        return EXIT_FAILURE;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return EXIT_SUCCESS;
}

} // namespace Bench
