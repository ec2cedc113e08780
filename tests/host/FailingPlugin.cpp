#include <support/Extension.h>
#include <support/Listener.h>

#include <plugins/PluginInterface.h>
#include <registries/CommInfo.h>
#include <registries/CommInfoRegistry.h>
#include <registries/ExtendPluginRegistry.h>

#include <QCoreApplication>
#include <QObject>
#include <QTimer>

#include <chrono>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <thread>

#ifdef Q_OS_UNIX
#include <sys/wait.h>
#include <unistd.h>
#endif

/// The stage and the way in which the plug-in fails. Tests replace this text in copies of the file.
static const volatile char wayOfFailing[] = "the stage and the failure";

static QByteArray wayOf()
{
    QByteArray way;
    for (const volatile char& letter : wayOfFailing)
        way += letter;
    return way;
}

[[maybe_unused]] static const bool isInitialised = [] {
    if (wayOf().startsWith("initialised throw"))
        throw std::runtime_error("test exception");
    return true;
}();

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
        const QByteArray way = wayOf();
        if (way.startsWith("registers")) {
            App::CommInfoRegistry::instance()->registerCommInfo(&_channel);
            for (Extension& extension : _extensions)
                App::ExtendPluginRegistry::instance().registerExtendInfo(&extension);
        }
        if (way.startsWith("listens"))
            listen(way.at(8) - '0');
        QTimer::singleShot(0, [] { enterStage("later"); });
    }
    void stop() override { enterStage("stopped"); }
    App::PluginInfo pluginInfo() const override
    {
        App::PluginInfo info;
        info.set("Name"_s, "Failing"_s);
        return info;
    }

private:
    /// Registers a listener of one kind that is never deleted.
    void listen(int kind)
    {
        static auto& forever = *new Listener([](const QString&) {});
        additions[kind](App::Application::instance(), &forever);
    }

    static void enterStage(const char* stage)
    {
        std::puts(stage);
        std::fflush(stdout);
        const QByteArray way = wayOf();
        if (!way.startsWith(QByteArray(stage) + ' '))
            return;
        if (way.contains("crash"))
            crash();
        if (way.contains("overflow"))
            overflow(0);
        if (way.contains("throw"))
            throw std::runtime_error("test exception");
        if (way.contains("_exit"))
            std::_Exit(0);
        if (way.contains("quit"))
            QCoreApplication::exit();
        if (way.contains("exit"))
            std::thread([] { std::exit(3); }).join();
#ifdef Q_OS_UNIX
        if (way.contains("fork")) {
            forkChild([] { std::exit(0); });
            forkChild([] { throw std::runtime_error("in a child"); });
            forkChild(crash);
        }
#endif
        if (way.contains("wait"))
            std::this_thread::sleep_for(std::chrono::milliseconds(310));
        if (way.contains("hang"))
            std::this_thread::sleep_for(std::chrono::hours(1));
    }

#ifdef Q_OS_UNIX
    /// Starts a child process that ends with a function, which may throw, and waits for it.
    static void forkChild(void (*end)()) noexcept
    {
        const pid_t child = ::fork();
        if (child == 0)
            end();
        ::waitpid(child, nullptr, 0);
    }
#endif

    static int overflow(int depth)
    {
        volatile int room[1000] = {depth};
        return depth == INT_MAX ? 0 : overflow(depth + 1) + room[0];
    }

    static void crash()
    {
        // The compiler would notice a null pointer.
        volatile std::uintptr_t address = 8;
        *reinterpret_cast<volatile int*>(address) = 0;
    }

    App::CommInfo _channel;
    Extension _extensions[2];
};

#include "FailingPlugin.moc"
