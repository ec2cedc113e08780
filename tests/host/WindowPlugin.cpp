#include <app/Application.h>
#include <ovcore/ConsoleSingleton.h>
#include <plugins/PluginInterface.h>
#include <registries/CommInfo.h>
#include <registries/CommInfoRegistry.h>

#include <QPointer>
#include <QWidget>

#include <stdexcept>

namespace {

void log(const char* what)
{
    Core::ConsoleSingleton::instance().log("WindowPlugin: %s", what);
}

struct Window : QWidget
{
    ~Window() override { log("window deleted"); }
};

struct Channel : App::CommInfo
{
    QString name() const override { return QStringLiteral("test channel"); }
    void start() override { log("channel started"); }
    void stop() override { log("channel stopped"); }
};

} // namespace

/// Has a window and a channel, logs when it loses them, and can fail to start.
class WindowPlugin : public QObject, public App::PluginInterface
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "com.quillmere.beamforge.PluginInterface/1.0")
    Q_INTERFACES(App::PluginInterface)

public:
    quint64 pluginID() const override { return 0x2a; }
    int supportedBoardTypes() const override { return 1; }
    App::PluginInfo pluginInfo() const override
    {
        App::PluginInfo info;
        info.set(QStringLiteral("Name"), QStringLiteral("window plug-in"));
        return info;
    }
    void start() override
    {
        if (qEnvironmentVariableIsSet("WINDOW_PLUGIN_FAILS"))
            throw std::runtime_error("no licence");
        App::CommInfoRegistry::instance()->registerCommInfo(&_channel);
        _window = new Window;
        _window->setAttribute(Qt::WA_DeleteOnClose);
        _window->setObjectName(QStringLiteral("windowOfPlugin"));
        _window->show();
    }
    void stop() override
    {
        App::CommInfoRegistry::instance()->unregisterCommInfo(&_channel);
        log(App::Application::instance().activateDocument() ? "stopped, with a document"
                                                            : "stopped, without a document");
        delete _window;
    }

private:
    Channel _channel;
    QPointer<Window> _window;
};

#include "WindowPlugin.moc"
