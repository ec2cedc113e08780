#include <app/Application.h>
#include <ovcore/Settings.h>
#include <plugins/PluginLoader.h>

#include <QCoreApplication>
#include <QPluginLoader>
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
    QPluginLoader loader;
    const auto verdict = App::PluginLoader::verdictOn(
        App::PluginLoader::rootObjectOf(QStringLiteral(PLUGIN), loader));
    App::Application::destruct();
    return version.toString() == QLatin1String("9.8.7") &&
                   verdict == App::PluginLoader::Verdict::Accepted
               ? 0
               : 1;
}
