#include "CommandLine.h"
#include "Output.h"

#include <ovcore/Version.h>

#include <QLoggingCategory>

#include <csignal>
#include <cstdio>
#include <memory>

#ifdef OVAPP_HOST_WIDGETS
#include <QApplication>
#else
#include <QCoreApplication>
#endif
#ifdef Q_OS_WIN
#include <qt_windows.h>
#endif

namespace {

/// Creates the application object of Qt. For the commands that load plug-ins, which may have
/// widgets, it is a `QApplication` on the platform "offscreen" unless QT_QPA_PLATFORM is set.
std::unique_ptr<QCoreApplication> createApplication(int& argc, char** argv)
{
#ifdef OVAPP_HOST_WIDGETS
    const QByteArray command(argc > 1 ? argv[1] : "");
    if (command == "run" || command == "inspect-plugin") {
        const char* const platform = "QT_QPA_PLATFORM";
        const bool isOffscreen = qEnvironmentVariableIsEmpty(platform);
        if (isOffscreen)
            qputenv(platform, "offscreen");
        // Qt warns if there is no desktop session, for example that XDG_RUNTIME_DIR is not set.
        QLoggingCategory::setFilterRules(QStringLiteral("*.warning=false"));
        auto application = std::make_unique<QApplication>(argc, argv);
        QLoggingCategory::setFilterRules(QString());
        // Programs that plug-ins start have their windows on the screen.
        if (isOffscreen)
            qunsetenv(platform);
        return application;
    }
#endif
    return std::make_unique<QCoreApplication>(argc, argv);
}

} // namespace

int main(int argc, char** argv)
{
#ifdef Q_OS_WIN
    // This program and those that it starts write UTF-8.
    SetConsoleOutputCP(CP_UTF8);
#else
    // A closed pipe is a write error, after which temporary files are removed. Qt restores the
    // default in the processes that it starts.
    std::signal(SIGPIPE, SIG_IGN);
#endif
    const std::unique_ptr<QCoreApplication> application = createApplication(argc, argv);
    QCoreApplication::setApplicationName(Host::executableName);
    QCoreApplication::setApplicationVersion(QString::fromUtf8(Core::Version::versionString()));
    const int exitCode = Host::runCommand(QCoreApplication::arguments());
    if (std::ferror(stdout))
        return Host::fail(Host::Failure, QStringLiteral("cannot write to standard output"));
    return exitCode;
}
