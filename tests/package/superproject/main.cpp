#include <app/Application.h>
#include <ovcore/Settings.h>
#include <plugins/PluginLoader.h>

#include <QCoreApplication>
#include <QTemporaryDir>
#include <QVariant>

// Ends with 0 if the version that ovapp stores is the one of this project's library, and this
// project's plug-in is accepted.
int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const QTemporaryDir directory;
    Core::Settings::instance().setApplicationDirPath(directory.path());
    App::Application::init();
    App::Application::instance().doAppStartFinished();
    const QVariant version = Core::Settings::instance().value(QStringLiteral("About/version"));
    const App::PluginRecord plugin = App::PluginLoader::loadFile(QStringLiteral(PLUGIN), false);
    App::Application::destruct();
    const bool isAccepted = plugin.verdict == App::PluginRecord::Verdict::Accepted;
    return version.toString() == QLatin1String("9.8.7") && isAccepted ? 0 : 1;
}
