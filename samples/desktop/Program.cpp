#include "Program.h"

#include "MainWindow.h"

#include <app/Application.h>
#include <ovcore/ConsoleSingleton.h>
#include <ovcore/Settings.h>
#include <plugins/PluginLoader.h>
#include <registries/CommInfoRegistry.h>

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QPainter>
#include <QSplashScreen>

namespace {

QPixmap splashImage()
{
    const QPalette palette = QApplication::palette();
    QPixmap image(420, 140);
    image.fill(palette.color(QPalette::Highlight));
    QPainter painter(&image);
    QFont font = QApplication::font();
    font.setPointSize(2 * font.pointSize());
    painter.setFont(font);
    painter.setPen(palette.color(QPalette::HighlightedText));
    painter.drawText(image.rect(), Qt::AlignCenter, QCoreApplication::applicationName());
    return image;
}

void loadPlugins(QSplashScreen& splash)
{
    App::PluginLoader::setProgressHandler([&splash](const QString& file, int index, int count) {
        splash.showMessage(
            QSplashScreen::tr("Loading plug-in %1 of %2: ").arg(index + 1).arg(count) +
                QFileInfo(file).fileName(),
            Qt::AlignHCenter | Qt::AlignBottom,
            QApplication::palette().color(QPalette::HighlightedText));
        QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
    });
    App::PluginLoader::initPluginIDValue();
    App::PluginLoader::loadPlugins(true);
    App::PluginLoader::setProgressHandler({});
    App::Application::instance().notifyPluginStateChangeListener(App::PluginLoader::pluginCount());
}

/// Deletes the objects passed to `deleteLater`, since the event loop no longer runs.
void deleteDeferredObjects()
{
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
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
        Core::ConsoleSingleton::instance().warning(
            "Program::Program: settings will be lost: cannot write to %s",
            applicationDir.toLocal8Bit().constData());
    }

    QSplashScreen splash(splashImage());
    splash.show();
    loadPlugins(splash);
    _window->show();
    App::Application::instance().doAppStartFinished();
}

Program::~Program()
{
    // Closes the windows of plug-ins. The main window has already asked about unsaved changes.
    _window->hide();
    QApplication::closeAllWindows();
    deleteDeferredObjects();

    App::CommInfoRegistry::instance()->stop();
    App::PluginLoader::unloadPlugins();
    deleteDeferredObjects();

    // The window owns the closed document, and removes its listeners, which requires the library.
    App::Application::instance().closeDocument();
    _window.reset();
    App::Application::destruct();
}
