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
    // What the program asks before it takes the plug-in.
    int supportedBoardTypes() const override;
    quint64 pluginID() const override;
    App::PluginInfo pluginInfo() const override;

    // The plug-in's work: begin it, end it.
    void start() override;
    void stop() override;

    void updateNewDocumentListener(Doc::Document* document) override;
};
