#pragma once

#include "TriggerChannel.h"

#include <plugins/PluginInterface.h>

#include <QObject>

/// Lets other programs on this computer query the print counts of the active document, and count
/// finished pieces. The plug-in registers a channel; the program starts and stops it with its other
/// channels.
class TcpTrigger : public QObject, public App::PluginInterface
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "com.quillmere.beamforge.PluginInterface/1.0")
    Q_INTERFACES(App::PluginInterface)

public:
    quint64 pluginID() const override;
    int supportedBoardTypes() const override;
    void start() override;
    void stop() override;
    App::PluginInfo pluginInfo() const override;

private:
    TriggerChannel _channel;
};
