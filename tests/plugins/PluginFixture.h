#pragma once

#include "RecordingPlugin.h"

#include <support/Session.h>

#include <plugins/PluginLoader.h>

#include <QRegularExpression>

/// A session with board type 2 and an empty plug-in directory.
class PluginFixture : public Session
{
public:
    PluginFixture() : Session("[Board]\ntype=2\n")
    {
        QDir(path(QString())).mkdir("plugins"_s);
        Core::Settings::instance().setPluginDirPath(path("plugins"_s));
        App::PluginLoader::loadPlugins(false);
    }
    ~PluginFixture() { App::PluginLoader::unloadPlugins(); }

    /// Returns the paths of files in the plug-in directory.
    QString plugin(const QString& name) const { return path("plugins/"_s + name); }
    QStringList plugins(const char* names) const
    {
        return words(names).replaceInStrings(QRegularExpression("^"_s), plugin(QString()));
    }

    /// Copies plug-ins into the plug-in directory, and returns the paths of the files.
    QStringList copy(const char* targets, const char* names) const
    {
        const QStringList files = plugins(names);
        for (int i = 0; i < files.size(); ++i)
            writeFile(files.at(i), built(words(targets).at(i)));
        return files;
    }

    /// Returns the content of a plug-in that is built with the tests.
    static QByteArray built(const QString& target)
    {
        return contentOf(QStringLiteral(BUILT_PLUGIN_DIR "/%1.dll").arg(target));
    }
};
