#pragma once

#include <memory>

class MainWindow;
class QString;

/// The whole program from start-up to shutdown, except the event loop. Construct it after the
/// `QApplication`, and destroy it before the `QApplication`.
class Program
{
public:
    /// Initialises the library, loads the plug-ins behind a splash screen and shows the main
    /// window. `applicationDir`, which is created if it is missing, contains the settings.
    Program(const QString& applicationDir, const QString& pluginDir);
    /// Shuts everything down in the reverse order. Unsaved changes are lost: the main window asks
    /// before it closes.
    ~Program();

    MainWindow& window() { return *_window; }

private:
    std::unique_ptr<MainWindow> _window;
};
