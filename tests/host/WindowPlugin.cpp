#include <app/Application.h>
#include <app/CloseDocumentListener.h>
#include <app/TransactionListener.h>
#include <ovcore/ConsoleSingleton.h>
#include <plugins/PluginInterface.h>
#include <registries/CommInfo.h>
#include <registries/CommInfoRegistry.h>

#include <QPointer>
#include <QThread>
#include <QWidget>

#include <stdexcept>

namespace {

void log(const char* what)
{
    Core::ConsoleSingleton::instance().log("WindowPlugin: %s", what);
}

/// Throws an exception if the environment contains the place of the call.
void mayFail(const char* place)
{
    if (qgetenv("WINDOW_PLUGIN_FAILS").split(',').contains(place))
        throw std::runtime_error("no licence");
}

struct Window : QWidget
{
    ~Window() override { log("window deleted"); }
};

struct Channel : App::CommInfo
{
    QString name() const override { return QStringLiteral("test channel"); }
    void start() override
    {
        log("channel started");
        mayFail("channel start");
    }
    void stop() override
    {
        log("channel stopped");
        mayFail("channel stop");
    }
};

struct Listener : App::CloseDocumentListener, App::TransactionListener
{
    void updateCloseDocumentListener(Doc::Document*) override { mayFail("close"); }
    void updateTransactionListener(Doc::Document*, Doc::Transaction*) override
    {
        mayFail("transaction");
    }
};

} // namespace

/// Has a window, a channel and listeners, logs when it loses them, and can fail.
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
        info.set(QStringLiteral("Version"), QStringLiteral("2.1"));
        return info;
    }
    void start() override
    {
        if (qgetenv("WINDOW_PLUGIN_FAILS") == "hang")
            QThread::sleep(60);
        mayFail("start");
        App::CommInfoRegistry::instance()->registerCommInfo(&_channel);
        App::Application::instance().addCloseDocumentListener(&_listener);
        App::Application::instance().addTransactionListener(&_listener);
        _window = new Window;
        _window->setAttribute(Qt::WA_DeleteOnClose);
        _window->setObjectName(QStringLiteral("windowOfPlugin"));
        _window->show();
    }
    void stop() override
    {
        App::CommInfoRegistry::instance()->unregisterCommInfo(&_channel);
        App::Application::instance().removeCloseDocumentListener(&_listener);
        App::Application::instance().removeTransactionListener(&_listener);
        log(App::Application::instance().activateDocument() ? "stopped, with a document"
                                                            : "stopped, without a document");
        delete _window;
    }

private:
    Channel _channel;
    Listener _listener;
    QPointer<Window> _window;
};

#include "WindowPlugin.moc"
