#pragma once

#include "RecordingPlugin.h"

#include <support/Literals.h>

#include <ovcore/BoardEthDescHandler.h>
#include <ovcore/Settings.h>
#include <plugins/PluginLoader.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

/// An empty plug-in directory and the services that the loader needs, with board type 2.
class PluginFixture
{
public:
    PluginFixture()
    {
        Core::Settings::instance().setApplicationDirPath(_directory.path());
        Core::Settings::instance().setPluginDirPath(path("plugins"_s));
        Core::Settings::instance().init();
        Core::BoardEthDescHandler::init();
        Core::BoardEthDescHandler::instance()->setCurrentBoardEthDescType(2);
        QDir(_directory.path()).mkdir("plugins"_s);
        App::PluginLoader::loadPlugins(false);
    }
    ~PluginFixture()
    {
        App::PluginLoader::unloadPlugins();
        Core::BoardEthDescHandler::destruct();
        Core::Settings::destruct();
    }

    /// The path of a file in the application directory, and of one in the plug-in directory.
    QString path(const QString& name) const { return QDir(_directory.path()).filePath(name); }
    QString plugin(const QString& name) const { return path("plugins/"_s + name); }

    /// Writes a file in the plug-in directory, and the directories that it lies in.
    bool write(const QString& name, const QByteArray& content = QByteArray()) const
    {
        QFile file(plugin(name));
        return QDir().mkpath(QFileInfo(file).path()) && file.open(QIODevice::WriteOnly) &&
               file.write(content) == content.size();
    }

    /// The content of one of the plug-ins built beside the tests.
    static QByteArray built(const QString& target)
    {
        QFile file(QStringLiteral(BUILT_PLUGIN_DIR "/%1.dll").arg(target));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

private:
    QTemporaryDir _directory;
};
