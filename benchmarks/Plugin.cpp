#include <plugins/PluginInterface.h>

#include <QObject>

/// The smallest possible plug-in.
class Plugin : public QObject, public App::PluginInterface
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "com.quillmere.beamforge.PluginInterface/1.0")
    Q_INTERFACES(App::PluginInterface)

public:
    quint64 pluginID() const override { return 1; }
    int supportedBoardTypes() const override { return 1; }
    void start() override {}
    void stop() override {}
    App::PluginInfo pluginInfo() const override
    {
        App::PluginInfo info;
        info.set(QStringLiteral("Name"), QStringLiteral("bench"));
        return info;
    }
};

#include "Plugin.moc"
