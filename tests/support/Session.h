#pragma once

#include <support/Files.h>
#include <support/Literals.h>

#include <app/Application.h>
#include <ovcore/Settings.h>

#include <QTemporaryDir>

/// The program up for as long as this lives, on an application directory of its own.
class Session
{
public:
    /// `settings` is what "ovapp.ini" holds at start-up.
    explicit Session(const QByteArray& settings = QByteArray())
    {
        write("ovapp.ini"_s, settings);
        Core::Settings::instance().setApplicationDirPath(_directory.path());
        App::Application::init();
    }
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;
    ~Session() { App::Application::destruct(); }

    App::Application& application() const { return App::Application::instance(); }

    /// The path of a file in the application directory.
    QString path(const QString& name) const { return _directory.filePath(name); }

    /// Writes a file into the application directory and returns its path.
    QString write(const QString& name, const QByteArray& content) const
    {
        writeFile(path(name), content);
        return path(name);
    }

private:
    QTemporaryDir _directory;
};
