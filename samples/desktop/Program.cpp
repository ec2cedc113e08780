#include "Program.h"

#include "ChannelsPanel.h"
#include "MainWindow.h"
#include "Messages.h"
#include "PluginChoice.h"

#include <app/Application.h>
#include <ovcore/ConsoleSingleton.h>
#include <ovcore/Settings.h>
#include <plugins/PluginLoader.h>

#include <QApplication>
#include <QDir>
#include <QSplashScreen>

namespace {

void loadPlugins(const QString& applicationDir)
{
    using App::PluginLoader;
    PluginChoice choice(applicationDir);
    QSplashScreen splash(QApplication::windowIcon().pixmap(256));
    splash.show();
    PluginLoader::setFileFilter([](const QString& file) {
        return PluginChoice::isLeftOut(file) ? QSplashScreen::tr("the user has left it out")
                                             : QString();
    });
    PluginLoader::setStepHandler([&](const QString& file, PluginLoader::Step) {
        choice.setStarting(file);
        splash.showMessage(QFileInfo(file).fileName(), Qt::AlignHCenter | Qt::AlignBottom,
                           Qt::white);
    });
    PluginLoader::initPluginIDValue();
    PluginLoader::loadPlugins(true);
    PluginLoader::setStepHandler({});
}

/// Deletes the objects passed to `deleteLater`, since the event loop no longer runs.
void deleteDeferredObjects()
{
    guarded(nullptr, QObject::tr("A plug-in failed when its objects were deleted"),
            [] { QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); });
}

} // namespace

Program::Program(const QString& applicationDir, const QString& pluginDir)
{
    const bool isWritable = QDir().mkpath(applicationDir) && QFileInfo(applicationDir).isWritable();
    Core::Settings::instance().setApplicationDirPath(applicationDir);
    Core::Settings::instance().setPluginDirPath(pluginDir);
    App::Application::init();

    // Before the plug-ins are loaded, so that its listeners are notified of everything they do.
    _window = std::make_unique<MainWindow>();
    if (!isWritable) {
        Core::ConsoleSingleton::instance().warning("Settings will be lost: cannot write to %s",
                                                   applicationDir.toLocal8Bit().constData());
    }
    loadPlugins(applicationDir);
    _window->restoreLayout();
    _window->show();
    guarded(_window.get(), QObject::tr("A plug-in failed at the end of the start"), [] {
        App::Application& application = App::Application::instance();
        application.notifyPluginStateChangeListener(App::PluginLoader::pluginCount());
        application.doAppStartFinished();
    });
}

Program::~Program()
{
    // Closes the windows of plug-ins. The main window has already asked about unsaved changes.
    _window->hide();
    guarded(nullptr, QObject::tr("A window of a plug-in failed when it was closed"),
            &QApplication::closeAllWindows);
    deleteDeferredObjects();

    _window->channels().stop();
    App::PluginLoader::unloadPlugins();
    deleteDeferredObjects();

    // The window owns the closed document, and its listeners are removed: both need the library.
    guarded(nullptr, QObject::tr("A plug-in failed when the document was closed"),
            [] { App::Application::instance().closeDocument(); });
    _window.reset();
    App::Application::destruct();
}
