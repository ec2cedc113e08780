#include <plugins/PluginInterface.h>

#include <QObject>

#include <cstdint>
#include <cstdlib>
#include <stdexcept>
#include <thread>

/// Ends the program at the moment and in the way that the environment says.
class FailingPlugin : public QObject, public App::PluginInterface
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "com.quillmere.beamforge.PluginInterface/1.0")
    Q_INTERFACES(App::PluginInterface)

public:
    FailingPlugin() { passMoment("loaded"); }
    ~FailingPlugin() override { passMoment("unloaded"); }
    quint64 pluginID() const override { return 1; }
    int supportedBoardTypes() const override { return -1; }
    void start() override { passMoment("started"); }
    void stop() override { passMoment("stopped"); }
    App::PluginInfo pluginInfo() const override { return App::PluginInfo(); }

private:
    static void passMoment(const char* moment)
    {
        const QByteArray way = qgetenv("FAILING_PLUGIN").trimmed();
        if (!way.endsWith(QByteArray(" ") + moment))
            return;
        if (way.startsWith("exit"))
            std::exit(0);
        if (way.startsWith("throw"))
            throw std::runtime_error("fails");
        if (way.startsWith("thread"))
            std::thread(crash).join();
        crash();
    }

    static void crash()
    {
        // Near the null pointer, which the compiler would know of.
        volatile std::uintptr_t address = 8;
        *reinterpret_cast<volatile int*>(address) = 0;
    }
};

#include "FailingPlugin.moc"
