#pragma once

#include <app/NewDocumentListener.h>
#include <plugins/PluginInterface.h>

#include <QObject>

class MyPlugin : public QObject, public App::PluginInterface, public App::NewDocumentListener
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "com.quillmere.beamforge.PluginInterface/1.0")
    Q_INTERFACES(App::PluginInterface)

public:
    // The program calls these before it accepts the plug-in.
    int supportedBoardTypes() const override;
    quint64 pluginID() const override;
    App::PluginInfo pluginInfo() const override;

    // Called after the plug-in is loaded, and before it is unloaded.
    void start() override;
    void stop() override;

    void updateNewDocumentListener(Doc::Document* document) override;
};
