#include "Session.h"

#include <app/Application.h>

#include <ovcore/Settings.h>

#include <benchmark/benchmark.h>

#include <QStandardPaths>

#include <cstdlib>

namespace Bench {

namespace {

/// The table's maker finds it among what the JSON says about the run.
void want(const std::string& name, const std::string& ratio)
{
    benchmark::AddCustomContext("wanted " + name, ratio);
}

} // namespace

void wantAtMost(const std::string& name, double ratio)
{
    want(name, "ovapp/it <= " + QString::number(ratio).toStdString());
}

void wantFaster(const std::string& name, double ratio)
{
    want(name, "it/ovapp >= " + QString::number(ratio).toStdString());
}

Session::Session(int& argc, char** argv) : _argc(argc), _argv(argv), _qtApplication(argc, argv)
{
    if (!_directory.isValid())
        qFatal("no temporary directory: %s", qPrintable(_directory.errorString()));
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
