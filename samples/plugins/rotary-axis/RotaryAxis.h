#pragma once

#include <plugins/PluginInterface.h>

#include <QObject>

/// A plug-in for boards of type 2 only, which have a rotary axis. With any other board it is
/// refused.
class RotaryAxis : public QObject, public App::PluginInterface
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
};
