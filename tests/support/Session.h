#pragma once

#include <support/Files.h>
#include <support/Literals.h>

#include <app/Application.h>
#include <ovcore/Settings.h>

#include <QTemporaryDir>

/// Initialises the library with a temporary application directory; shuts it down in the destructor.
class Session
{
public:
    /// `settings` is the content of "ovapp.ini" at start-up.
    explicit Session(const QByteArray& settings = QByteArray())
    {
        write("ovapp.ini"_s, settings);
        Core::Settings::instance().setApplicationDirPath(_directory.path());
        App::Application::init();
    }
    Q_DISABLE_COPY(Session)
    ~Session() { App::Application::destruct(); }

    App::Application& application() const { return App::Application::instance(); }

    /// Returns the path of a file in the application directory.
    QString path(const QString& name) const { return _directory.filePath(name); }

    /// Writes a file in the application directory and returns its path.
    QString write(const QString& name, const QByteArray& content) const
    {
        writeFile(path(name), content);
        return path(name);
    }

private:
    QTemporaryDir _directory;
};
