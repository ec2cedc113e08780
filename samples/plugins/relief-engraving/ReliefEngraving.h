#pragma once

#include <plugins/ExtendPluginInterface.h>
#include <registries/ExtendPluginInfo.h>

#include <QObject>

/// The description that the program shows in its list of extensions.
class ReliefEngravingInfo : public App::ExtendPluginInfo
{
public:
    QString name() const override;
    QString nameForTranslate() const override;
    QString description() const override;
    int supportedBoardTypes() const override;
};

/// An extension plug-in. Its description is registered while the plug-in is started.
class ReliefEngraving : public QObject, public App::ExtendPluginInterface
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

    bool needSaveDocBeforeStart() const override;

private:
    ReliefEngravingInfo _info;
};
