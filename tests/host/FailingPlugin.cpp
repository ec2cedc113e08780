#include <plugins/PluginInterface.h>

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

/// How and when it fails: a test that copies the file writes other words over these.
static const volatile char wayOfFailing[] = "how, and at which moment";

/// Ends the program in the way and at the moment that its file says, and prints each moment.
class FailingPlugin : public QObject, public App::PluginInterface
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "com.quillmere.beamforge.PluginInterface/1.0")
    Q_INTERFACES(App::PluginInterface)

public:
    FailingPlugin() { passMoment("loaded"); }
    ~FailingPlugin() override { passMoment("unloaded"); }
    quint64 pluginID() const override { return passMoment("asked"), 0x1f; }
    int supportedBoardTypes() const override { return 4; }
    void start() override
    {
        passMoment("started");
        QTimer::singleShot(0, [] { passMoment("later"); });
    }
    void stop() override { passMoment("stopped"); }
    App::PluginInfo pluginInfo() const override { return App::PluginInfo(); }

private:
    static void passMoment(const char* moment)
    {
        std::puts(moment);
        std::fflush(stdout);
        QByteArray way;
        for (const volatile char& letter : wayOfFailing)
            way += letter;
        if (!way.startsWith(QByteArray(moment) + ' '))
            return;
        if (way.contains("crash"))
            crash();
        if (way.contains("overflow"))
            overflow(0);
        if (way.contains("throw"))
            throw std::runtime_error("of no use");
        if (way.contains("_exit"))
            std::_Exit(0);
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
        // Near the null pointer, which the compiler would know of.
        volatile std::uintptr_t address = 8;
        *reinterpret_cast<volatile int*>(address) = 0;
    }
};

#include "FailingPlugin.moc"
