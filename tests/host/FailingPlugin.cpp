#include <support/Extension.h>
#include <support/Listener.h>

#include <plugins/PluginInterface.h>
#include <registries/CommInfo.h>
#include <registries/CommInfoRegistry.h>
#include <registries/ExtendPluginRegistry.h>

#include <QCoreApplication>
#include <QObject>

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <thread>

/// Prints each stage of its lifetime, and fails at the stage and in the way that its file contains.
class FailingPlugin : public QObject, public App::PluginInterface
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "com.quillmere.beamforge.PluginInterface/1.0")
    Q_INTERFACES(App::PluginInterface)

public:
    FailingPlugin() { enterStage("loaded"); }
    ~FailingPlugin() override { enterStage("unloaded"); }
    quint64 pluginID() const override { return enterStage("queried"), 0x1f; }
    int supportedBoardTypes() const override { return 4; }
    void start() override
    {
        enterStage("started");
        if (!QByteArray(wayOfFailing).startsWith("registers"))
            return;
        App::CommInfoRegistry::instance()->registerCommInfo(&_channel);
        for (Extension& extension : _extensions)
            App::ExtendPluginRegistry::instance().registerExtendInfo(&extension);
        App::Application::instance().addSelectionListener(&_listener);
    }
    void stop() override { enterStage("stopped"); }
    App::PluginInfo pluginInfo() const override
    {
        App::PluginInfo info;
        info.set("Name"_s, "Failing"_s);
        info.set("Version"_s, "2.5"_s);
        return info;
    }

private:
    /// The stage and the way in which the plug-in fails. Tests replace this text in copies of the
    /// file.
    inline static char wayOfFailing[] = "the stage and the failure";

    static void enterStage(const char* stage)
    {
        std::puts(stage);
        const QByteArray way = wayOfFailing;
        if (!way.startsWith(QByteArray(stage) + ' '))
            return;
        if (way.contains("crash")) {
            // The compiler would notice a null pointer.
            volatile std::uintptr_t address = 8;
            *reinterpret_cast<volatile int*>(address) = 0;
        }
        if (way.contains("throw"))
            throw std::runtime_error("test exception");
        if (way.contains("exit"))
            std::_Exit(0);
        if (way.contains("quit"))
            QCoreApplication::exit();
        if (way.contains("wait"))
            std::this_thread::sleep_for(std::chrono::milliseconds(310));
        if (way.contains("hang"))
            std::this_thread::sleep_for(std::chrono::hours(1));
    }

    App::CommInfo _channel;
    Extension _extensions[2];
    Listener _listener{[](const QString&) {}};
};

#include "FailingPlugin.moc"
