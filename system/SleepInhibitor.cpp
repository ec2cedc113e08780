#include <system/SleepInhibitor.h>

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingReply>
#include <QDBusUnixFileDescriptor>
#include <QFile>
#include <QScopeGuard>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <system_error>
#include <unistd.h>

namespace System {

namespace {

/// The name of the socket that a D-Bus address stands for; empty when it is for no Unix socket.
QByteArray socketName(const QByteArray& address)
{
    const QByteArray unixDomain = "unix:";
    if (!address.startsWith(unixDomain))
        return {};
    const QList<QByteArray> options = address.mid(unixDomain.size()).split(',');
    for (const QByteArray& option : options) {
        QByteArray value = QByteArray::fromPercentEncoding(option.mid(option.indexOf('=') + 1));
        if (option.startsWith("path="))
            return value;
        if (option.startsWith("abstract="))
            return '\0' + value;
    }
    return {};
}

/// Knocks at a bus: begins the handshake, with a question that it answers whoever asks. Returns the
/// socket on which the answer comes, or -1 when nobody listens.
int knockAt(const QByteArray& busAddress)
{
    const QByteArray name = socketName(busAddress);
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    if (name.isEmpty() || name.size() >= int(sizeof address.sun_path))
        return -1;
    std::copy(name.begin(), name.end(), address.sun_path);
    const auto length = socklen_t(offsetof(sockaddr_un, sun_path)) + socklen_t(name.size());

    const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    if (socket < 0)
        return -1;
    const QByteArray question("\0AUTH\r\n", 7);
    if (::connect(socket, reinterpret_cast<const sockaddr*>(&address), length) == 0 &&
        ::send(socket, question.data(), size_t(question.size()), MSG_NOSIGNAL) == question.size())
        return socket;
    ::close(socket);
    return -1;
}

QString programName()
{
    const QString name = QCoreApplication::applicationName();
    return name.isEmpty() ? QFile::decodeName(program_invocation_short_name) : name;
}

} // namespace

SleepInhibitor::SleepInhibitor()
    : _program(programName()), _process(::getpid()), _end(::eventfd(0, EFD_CLOEXEC))
{
    if (_end < 0)
        return;
    QByteArray value = qgetenv("DBUS_SYSTEM_BUS_ADDRESS");
    if (value.isEmpty())
        value = "unix:path=/var/run/dbus/system_bus_socket";
    const QList<QByteArray> addresses = value.split(';');
    for (const QByteArray& address : addresses) {
        const int knocking = knockAt(address);
        if (knocking < 0)
            continue;
        try {
            _thread = std::thread([=] {
                if (answers(knocking))
                    ask(QString::fromLatin1(address));
            });
        } catch (const std::system_error&) {
            // The user may have no more threads.
            ::close(knocking);
        }
        break;
    }
}

SleepInhibitor::~SleepInhibitor()
{
    if (!_thread.joinable()) {
        // There is nothing to end.
    } else if (::getpid() == _process) {
        ::eventfd_write(_end, 1);
        _thread.join();
    } else {
        // In a child that was forked there is no such thread, and the end would be the parent's.
        _thread.detach();
    }
    if (_end >= 0)
        ::close(_end);
}

bool SleepInhibitor::answers(int knocking) const
{
    char answer;
    const bool answered =
        !endsWithin(-1, knocking) && ::recv(knocking, &answer, sizeof answer, 0) > 0;
    ::close(knocking);
    return answered;
}

void SleepInhibitor::ask(const QString& busAddress) const
{
    // A bus wants to be greeted first. As a peer of Qt's it is greeted here, without waiting;
    // QDBusConnection::connectToBus would wait for the answer.
    const QString name = QStringLiteral("ovsystem sleep inhibitor");
    QDBusConnection bus = QDBusConnection::connectToPeer(busAddress, name);
    const auto disconnect = qScopeGuard([&] { QDBusConnection::disconnectFromPeer(name); });
    bus.asyncCall(QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("Hello")));

    for (const QString& what : {QStringLiteral("sleep:idle"), QStringLiteral("idle")}) {
        QDBusMessage inhibit = QDBusMessage::createMethodCall(
            QStringLiteral("org.freedesktop.login1"), QStringLiteral("/org/freedesktop/login1"),
            QStringLiteral("org.freedesktop.login1.Manager"), QStringLiteral("Inhibit"));
        inhibit << what << _program
                << QStringLiteral("Sleep would stop the laser in the middle of a job")
                << QStringLiteral("block");
        const QDBusPendingReply<QDBusUnixFileDescriptor> reply = bus.asyncCall(inhibit);
        // What tells of an answer needs a QCoreApplication.
        while (!reply.isFinished())
            if (endsWithin(20))
                return;
        if (!reply.isError()) {
            // The reply holds the descriptor that keeps the system awake.
            endsWithin(-1);
            return;
        }
    }
}

bool SleepInhibitor::endsWithin(int milliseconds, int socket) const
{
    pollfd files[] = {{_end, POLLIN, 0}, {socket, POLLIN, 0}};
    while (::poll(files, 2, milliseconds) < 0 && errno == EINTR) {
    }
    return files[0].revents != 0;
}

} // namespace System
