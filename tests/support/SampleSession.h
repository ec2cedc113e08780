#pragma once

#include <support/ConsoleRecorder.h>
#include <support/Session.h>

#include <plugins/PluginLoader.h>
#include <registries/CommInfoRegistry.h>

/// A session with the sample plug-ins loaded and started. The TCP trigger uses any free port.
struct SampleSession : Session
{
    explicit SampleSession(const QByteArray& settings = QByteArray()) : Session(settings)
    {
        write("TcpTrigger/TcpTrigger.ini"_s, "[Server]\nport=0\n");
        Core::Settings::instance().setPluginDirPath(QStringLiteral(SAMPLE_PLUGIN_DIR));
        App::PluginLoader::loadPlugins(true);
    }
    ~SampleSession() { App::PluginLoader::unloadPlugins(); }

    /// Starts the channels. Returns the port of the TCP trigger; 0 if it does not listen.
    quint16 startChannels() const
    {
        App::CommInfoRegistry::instance()->start();
        const QByteArray started = console.lines.last();
        if (!started.startsWith("TriggerChannel::start: listening on port "))
            return 0;
        return started.mid(started.lastIndexOf(' ') + 1).toUShort();
    }

    ConsoleRecorder console;
};
