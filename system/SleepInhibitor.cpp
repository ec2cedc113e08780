#include <system/SleepInhibitor.h>

#include <QCoreApplication>
#include <QSocketNotifier>

#include <cstdint>
#include <fcntl.h>
#include <systemd/sd-bus.h>
#include <unistd.h>

namespace System {

namespace {

/// Requests an inhibitor lock of these types from logind. `handler` receives the reply, and `lock`
/// as its user data.
int requestLock(sd_bus* bus, const char* types, sd_bus_message_handler_t handler, void* lock)
{
    return sd_bus_call_method_async(bus, nullptr, "org.freedesktop.login1",
                                    "/org/freedesktop/login1", "org.freedesktop.login1.Manager",
                                    "Inhibit", handler, lock, "ssss", types,
                                    qUtf8Printable(QCoreApplication::applicationName()),
                                    "Sleep would stop the laser in the middle of a job", "block");
}

/// Stores the descriptor in a reply; returns false if the reply is an error.
bool takeLock(sd_bus_message* reply, void* lock)
{
    int descriptor = -1;
    if (sd_bus_message_read(reply, "h", &descriptor) < 0)
        return false;
    // The original is closed with the reply.
    *static_cast<int*>(lock) = ::fcntl(descriptor, F_DUPFD_CLOEXEC, 0);
    return true;
}

int handleIdleReply(sd_bus_message* reply, void* lock, sd_bus_error*)
{
    takeLock(reply, lock);
    return 0;
}

int handleSleepReply(sd_bus_message* reply, void* lock, sd_bus_error*)
{
    if (!takeLock(reply, lock))
        requestLock(sd_bus_message_get_bus(reply), "idle", handleIdleReply, lock);
    return 0;
}

} // namespace

SleepInhibitor::SleepInhibitor() : _bus(nullptr, sd_bus_close_unref)
{
    // Posted, since there may be no event dispatcher or QCoreApplication yet.
    QMetaObject::invokeMethod(
        this, [this] { connectToBus(); }, Qt::QueuedConnection);
}

SleepInhibitor::~SleepInhibitor()
{
    if (_lock >= 0)
        ::close(_lock);
}

void SleepInhibitor::connectToBus()
{
    QByteArray address = qgetenv("DBUS_SYSTEM_BUS_ADDRESS");
    if (address.isEmpty())
        address = "unix:path=/run/dbus/system_bus_socket";
    sd_bus* bus = nullptr;
    if (sd_bus_new(&bus) < 0)
        return;
    _bus.reset(bus);
    // Without a time limit, since the event loop may be blocked for long, by a plug-in for example.
    if (sd_bus_set_address(bus, address.constData()) < 0 || sd_bus_set_bus_client(bus, 1) < 0 ||
        sd_bus_set_method_call_timeout(bus, UINT64_MAX) < 0 || sd_bus_start(bus) < 0 ||
        requestLock(bus, "sleep:idle", handleSleepReply, &_lock) < 0)
        return;
    // The requests fit into the empty buffer of the socket, so a notifier for input is enough.
    _notifier = std::make_unique<QSocketNotifier>(sd_bus_get_fd(bus), QSocketNotifier::Read);
    connect(_notifier.get(), &QSocketNotifier::activated, this, [this] { processMessages(); });
}

void SleepInhibitor::processMessages()
{
    int result = 1;
    while (result > 0)
        result = sd_bus_process(_bus.get(), nullptr);
    // A closed connection is always readable.
    if (result < 0)
        _notifier->setEnabled(false);
}

} // namespace System
