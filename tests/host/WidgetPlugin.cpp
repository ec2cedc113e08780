#include <plugins/PluginInterface.h>

#include <QLabel>
#include <QObject>

#include <memory>

/// Shows a label from `start` to `stop`.
class WidgetPlugin : public QObject, public App::PluginInterface
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "com.quillmere.beamforge.PluginInterface/1.0")
    Q_INTERFACES(App::PluginInterface)

public:
    quint64 pluginID() const override { return 0x20; }
    int supportedBoardTypes() const override { return 4; }
    void start() override
    {
        _label = std::make_unique<QLabel>(QStringLiteral("label"));
        _label->show();
    }
    void stop() override { _label.reset(); }
    App::PluginInfo pluginInfo() const override { return App::PluginInfo(); }

private:
    std::unique_ptr<QLabel> _label;
};

#include "WidgetPlugin.moc"
