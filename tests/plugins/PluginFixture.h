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

    /// The paths of files in the plug-in directory.
    QString plugin(const QString& name) const { return path("plugins/"_s + name); }
    QStringList plugins(const char* names) const
    {
        return words(names).replaceInStrings(QRegularExpression("^"_s), plugin(QString()));
    }

    /// The content of one of the plug-ins built beside the tests.
    static QByteArray built(const QString& target)
    {
        return contentOf(QStringLiteral(BUILT_PLUGIN_DIR "/%1.dll").arg(target));
    }
};
