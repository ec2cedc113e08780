// Repeats the life cycle of a program, and injects failures.

#include "SmallFileSystem.h"

#include <support/Listener.h>
#include <support/SampleSession.h>

#include <events/SelectionChangeEvent.h>
#include <events/TransactionEvent.h>
#include <ovdoc/DocObject.h>
#include <ovdoc/Storage.h>
#include <plugins/PluginBaseSettings.h>
#include <system/SettingsFile.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QHostAddress>
#include <QProcess>
#include <QSettings>
#include <QTcpSocket>
#include <QThread>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <future>
#include <memory>
#include <random>
#include <stdexcept>
#include <thread>
#include <vector>

#include <unistd.h>

namespace {

void require(bool condition, const char* failure)
{
    if (!condition)
        throw std::runtime_error(failure);
}

/// Checks that the memory and the open descriptors of this process do not grow after the first
/// tenth of the cycles.
class Growth
{
public:
    void measure(int done, int all)
    {
        const qint64 pages = contentOf("/proc/self/statm"_s).split(' ').value(1).toLongLong();
        const qint64 memory = pages * ::sysconf(_SC_PAGESIZE) / 1024;
        const auto descriptors =
            QDir("/proc/self/fd"_s).entryList(QDir::System | QDir::AllEntries).size();
        if (done * 10 <= all) {
            _memory = _peak = memory;
            _descriptors = descriptors;
        }
        _peak = std::max(_peak, memory);
        require(_peak - _memory <= maxGrowth, "memory grows");
        require(descriptors == _descriptors, "descriptors are left open");
    }
    QString summary() const
    {
        return "%1 KiB of memory after the first tenth, at most %2 KiB more later, %3 descriptors"_s
            .arg(_memory)
            .arg(_peak - _memory)
            .arg(_descriptors);
    }

private:
    static constexpr qint64 maxGrowth = 1024; // KiB

    qint64 _memory = 0; // KiB
    qint64 _peak = 0;   // KiB
    decltype(QStringList().size()) _descriptors = 0;
};

/// Keeps a closed document until the next one is closed, and counts the events that are delivered.
struct Keeper : QObject, App::CloseDocumentListener
{
    void updateCloseDocumentListener(Doc::Document* document) override { closed.reset(document); }
    bool event(QEvent* event) override
    {
        if (event->type() == App::TransactionEvent::eventType ||
            event->type() == App::SelectionChangeEvent::eventType)
            ++events;
        return QObject::event(event);
    }
    std::unique_ptr<Doc::Document> closed;
    int events = 0;
};

Laser::PrintCountParams countsOf(const Doc::Document& document)
{
    return document.storage()->queryDocObjectDirect()->printCountData();
}

void setCounts(const Doc::Document& document, int count)
{
    Laser::PrintCountParams counts;
    counts.setFinishedCount(count);
    counts.setTargetCount(count);
    document.storage()->queryDocObjectDirect()->setPrintCountData(counts);
}

/// Returns the count in a document; fails if the document was only partly saved.
int countIn(const QString& path)
{
    Doc::Document document(new Doc::Storage);
    require(document.open(path), "a document can no longer be opened");
    const Laser::PrintCountParams counts = countsOf(document);
    require(counts.finishedCount() == counts.targetCount(), "a document is partly saved");
    return counts.finishedCount();
}

/// Creates, saves, opens and closes documents, with all notifications and events.
void runDocumentCycle(const Session& session, Keeper& keeper, int count)
{
    App::Application& application = session.application();
    int calls = 0;
    Listener listener([&calls](const QString&) { ++calls; });
    add(application, &listener);
    const QString path = session.path("%1.ovdoc"_s.arg(count % 7));
    const Doc::Document* document = application.newDocument(path);
    require(document, "a document cannot be created");
    setCounts(*document, count);
    Doc::Transaction transaction("mark"_s);
    application.notifyTransactionListeners(nullptr, &transaction);
    application.notifySelectionListeners(nullptr);
    application.notifyObjectListListener(nullptr);
    application.notifyPropertyListeners(nullptr, true, count);
    application.postTransactionEvent(transaction, true, count, &keeper);
    application.postSelectionChangedEvent(&keeper);
    keeper.events = 0;
    QCoreApplication::processEvents();
    require(keeper.events == 2, "an event is lost");
    require(document->save() && countIn(path) == count, "a document is not saved");

    require(application.openDocument(session.path("other.ovdoc"_s)), "a document cannot be opened");
    auto activated = std::make_unique<Doc::Document>(new Doc::Storage);
    activated->setFilePath(path);
    application.setActivateDocument(activated.release());
    require(application.closeDocument(), "a document cannot be closed");
    require(calls == 9, "a listener is not called");
    remove(application, &listener);
}

QString cycles(int all)
{
    constexpr int perSession = 10;
    Growth growth;
    int sessions = 0;
    for (int done = 0; done < all;) {
        {
            const SampleSession session("[Debug]\nfile=true\n");
            session.write("other.ovdoc"_s, R"({"format": "ovdoc", "version": 1})");
            session.application().doAppStartFinished();
            Keeper keeper;
            session.application().addCloseDocumentListener(&keeper);
            require(session.startChannels() != 0, "a channel does not start");
            for (int i = 0; i < perSession && done < all; ++i)
                runDocumentCycle(session, keeper, ++done);
            App::CommInfoRegistry::instance()->stop();
            session.application().removeCloseDocumentListener(&keeper);
            ++sessions;
        }
        growth.measure(done, all);
    }
    return "%1 document cycles in %2 sessions with plug-ins: "_s.arg(all).arg(sessions) +
           growth.summary();
}

const QByteArray& ballast()
{
    static const QByteArray text(100000, 'x');
    return text;
}

/// Saves a document and a setting with increasing counts, and writes each count to standard output,
/// until the process is killed.
[[noreturn]] void saveUntilKilled(const QString& directory)
{
    Core::Settings::instance().setApplicationDirPath(directory);
    App::Application::init();
    const QString path = directory + "/killed.ovdoc"_s;
    Doc::Document document(new Doc::Storage);
    if (!document.open(path))
        std::_Exit(1);
    for (int count = countsOf(document).finishedCount();; ++count) {
        setCounts(document, count);
        if (!document.save())
            std::_Exit(1);
        Core::Settings::instance().setValue("Soak/count"_s, count);
        Core::Settings::instance().setValue("Soak/ballast"_s, ballast());
        if (::write(STDOUT_FILENO, &count, sizeof count) != sizeof count)
            std::_Exit(1);
    }
}

QString kills(int all)
{
    const QTemporaryDir directory;
    const QString path = directory.filePath("killed.ovdoc"_s);
    writeFile(path, R"({"format": "ovdoc", "version": 1, "ballast": ")" + ballast() + R"("})");
    std::mt19937 random(20210);
    qint64 slowest = 0;
    int saves = 0;
    int locks = 0;
    for (int done = 0; done < all; ++done) {
        QElapsedTimer start;
        start.start();
        QProcess child;
        child.start(QCoreApplication::applicationFilePath(), {"--save"_s, directory.path()});
        require(child.waitForReadyRead(), "a program does not start");
        slowest = std::max(slowest, start.elapsed());
        require(slowest < 1000, "a program starts slowly");
        QThread::usleep(static_cast<unsigned long>(random() % 20000));
        child.kill();
        require(child.waitForFinished() && child.exitStatus() == QProcess::CrashExit,
                "a program cannot save");

        // The save during which the process was killed may be complete or not.
        int last = 0;
        const QByteArray counts = child.readAllStandardOutput();
        std::copy_n(counts.end() - sizeof last, sizeof last, reinterpret_cast<char*>(&last));
        const auto isLastOrNext = [last](int count) { return count == last || count == last + 1; };
        saves += static_cast<int>(counts.size() / static_cast<int>(sizeof last));
        require(isLastOrNext(countIn(path)), "a document is older than its last save");
        require(contentOf(path).contains(ballast()), "a document has lost a member");
        locks += QFile::exists(directory.filePath("ovapp.ini.lock"_s));
        const QString copy = directory.filePath("copy.ini"_s);
        writeFile(copy, contentOf(directory.filePath("ovapp.ini"_s)));
        const QSettings settings(copy, QSettings::IniFormat);
        require(isLastOrNext(settings.value("Soak/count"_s).toInt()) &&
                    settings.value("Soak/ballast"_s).toByteArray() == ballast(),
                "settings are lost");
    }
    const auto partFiles = QDir(directory.path()).entryList({"*.??????"_s}, QDir::Files).size();
    return "%1 kills among %2 saves, %3 of them while a file was written, %4 while settings were "
           "locked: the slowest start took %5 ms"_s.arg(all)
               .arg(saves)
               .arg(partFiles)
               .arg(locks)
               .arg(slowest);
}

/// Writes to a file system with 0 to 31 free blocks: the reserve for settings is 16 blocks.
QString fullDisks()
{
    constexpr int all = 300;
    const SmallFileSystem fileSystem;
    if (!fileSystem.isMounted())
        return "skipped: "_s + QString::fromLatin1(cannotMount);
    {
        const SmallFileSystem unlimited("nr_blocks=0");
        const QString path = unlimited.filePath("unlimited.ini"_s);
        System::SettingsFile(path).setValue("count"_s, 1);
        require(contentOf(path).contains("count=1"), "a file system without a limit is not used");
    }
    qputenv("TMPDIR", QFile::encodeName(fileSystem.filePath(QString())));
    Growth growth;
    int saved = 0;
    int stored = 0;
    for (int done = 0; done < all; ++done) {
        fileSystem.setFreeBlocks(SmallFileSystem::enoughBlocks);
        const QByteArray more(1 + 29 * done, 'x');
        const Session session("[Debug]\nfile=true\n");
        Core::Settings& settings = Core::Settings::instance();
        const QString path = session.write(
            "full.ovdoc"_s, R"({"format": "ovdoc", "version": 1, "more": ")" + more + R"("})");
        const QString iniPath = session.path("ovapp.ini"_s);
        settings.setValue("Soak/count"_s, 1);
        const QByteArray ini = contentOf(iniPath);
        const QByteArray text = contentOf(path);
        Doc::Document document(new Doc::Storage);
        require(document.open(path), "a document cannot be opened");
        setCounts(document, 2);

        fileSystem.setFreeBlocks(done % 32);
        const bool isSaved = document.save();
        settings.setValue("Soak/more"_s, more);
        const QByteArray full = contentOf(iniPath);
        Core::ConsoleSingleton::instance().log("%s", more.constData());
        require(isSaved ? countIn(path) == 2 : contentOf(path) == text, "a document is lost");
        require(full == ini || (full.contains("count=1") && full.contains(more + ")\n")),
                "settings are lost");
        saved += isSaved;
        stored += full != ini;

        fileSystem.setFreeBlocks(SmallFileSystem::enoughBlocks);
        settings.setValue("Soak/count"_s, 2);
        const QByteArray later = contentOf(iniPath);
        require(later.contains(more) && later.contains("count=2"), "a setting is lost");
        Core::ConsoleSingleton::instance().log("afterwards");
        require(contentOf(session.path("log.txt"_s)).endsWith("\nafterwards\n"),
                "a log line is lost");
        require(QDir(session.path("."_s)).entryList(QDir::Files) ==
                    words("full.ovdoc log.txt ovapp.ini"),
                "a file is left over");
        growth.measure(done, all);
    }
    require(saved > 0 && saved < all && stored > 0 && stored < all,
            "no file system, or each, was full");
    return "%1 full file systems, %2 of them for a document, %3 for settings: "_s.arg(all)
               .arg(all - saved)
               .arg(all - stored) +
           growth.summary();
}

/// Stores values in a file that others write too, and requires each pair of them in the file.
void storeValues(const QString& directory, const QString& writer, int all)
{
    App::PluginBaseSettings settings("Shared"_s);
    for (int value = 0; value < all; value += 2) {
        const QString name = "%1%2"_s.arg(writer).arg(value % 20);
        settings.qSettings().setValue("a"_s + name, value);
        settings.setValue("b"_s + name, value);
        const QByteArray content = contentOf(directory + "/Shared/Shared.ini"_s);
        for (const char* prefix : {"\na", "\nb"}) {
            require(
                content.contains(prefix + name.toUtf8() + '=' + QByteArray::number(value) + '\n'),
                "a value is lost");
        }
    }
}

QString sharedSettings(int all)
{
    const QTemporaryDir directory;
    Core::Settings::instance().setApplicationDirPath(directory.path());
    std::vector<std::future<void>> threads;
    for (const char* writer : {"x", "y"}) {
        threads.push_back(std::async(std::launch::async, storeValues, directory.path(),
                                     QString::fromLatin1(writer), all / 2));
    }
    for (std::future<void>& thread : threads)
        thread.get();

    QProcess processes[3];
    char writer = 'p';
    for (QProcess& process : processes) {
        process.start(QCoreApplication::applicationFilePath(),
                      {"--store"_s, directory.path(), QString(QLatin1Char(writer++)),
                       QString::number(all / 3)});
    }
    for (QProcess& process : processes)
        require(process.waitForFinished(-1) && process.exitStatus() == QProcess::NormalExit,
                "a value is lost");
    Core::Settings::destruct();
    return "%1 values from two threads, and as many from three processes"_s.arg(all);
}

/// Sends a request and returns the data received until a line is complete or the connection is
/// closed. If the request is empty, disconnects at once.
QByteArray answerTo(const QByteArray& request, quint16 port)
{
    QTcpSocket client;
    QEventLoop loop;
    QTimer timeout;
    QObject::connect(&timeout, &QTimer::timeout, &loop, &QEventLoop::quit);
    timeout.start(10000);
    QObject::connect(&client, &QTcpSocket::disconnected, &loop, &QEventLoop::quit);
    QObject::connect(&client, &QTcpSocket::connected, &loop, [&] {
        if (client.write(request) <= 0)
            loop.quit();
    });
    QObject::connect(&client, &QTcpSocket::readyRead, &loop, [&] {
        if (client.canReadLine())
            loop.quit();
    });
    client.connectToHost(QHostAddress::LocalHost, port);
    loop.exec();
    return client.readAll();
}

QString connections(int all)
{
    const struct
    {
        QByteArray request;
        QByteArray answer;
    } kinds[] = {{"status\n", R"({"document":null,"finished":0,"target":0})"},
                 {QByteArray(300, 'x'), R"({"error":"the line is too long"})"},
                 {"stat\n", R"({"error":"unknown request; expected 'status' or 'finish'"})"},
                 {}};
    const SampleSession session;
    const quint16 port = session.startChannels();
    Growth growth;
    for (int done = 1; done <= all; ++done) {
        const auto& [request, answer] = kinds[done % 4];
        require(answerTo(request, port).trimmed() == answer, "a client is not answered");
        if (done % 10 != 0)
            continue;
        // Lets the server handle the disconnection.
        QEventLoop loop;
        QTimer::singleShot(5, &loop, &QEventLoop::quit);
        loop.exec();
        growth.measure(done, all);
    }
    App::CommInfoRegistry::instance()->stop();
    return "%1 connections: "_s.arg(all) + growth.summary();
}

/// Ends the process with `exit` on another thread, while the main thread's event loop requests the
/// sleep inhibitor.
int exitOnAnotherThread(unsigned long delay)
{
    App::Application::init();
    std::thread([delay] {
        QThread::usleep(delay);
        std::exit(0);
    }).detach();
    return QCoreApplication::exec();
}

QString exits(int all)
{
    QProcess bus;
    bus.start("dbus-daemon"_s, words("--session --nofork --nopidfile --print-address"));
    require(bus.waitForReadyRead(), "dbus-daemon cannot be started; run scripts/setup soak");
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", bus.readLine().trimmed());
    const QTemporaryDir directory;
    for (int done = 0; done < all; ++done) {
        QProcess child;
        child.setWorkingDirectory(directory.path());
        child.start(QCoreApplication::applicationFilePath(),
                    {"--exit"_s, QString::number(done % 20 * 250)});
        require(child.waitForFinished(), "a program does not end");
        require(child.exitStatus() == QProcess::NormalExit && child.exitCode() == 0,
                "a program crashes at exit");
        // Qt itself prints this if the main thread holds one of its locks at the exit.
        const QByteArray ignored = "QReadWriteLock: destroying locked QReadWriteLock\n";
        require(child.readAllStandardError().replace(ignored, "").isEmpty(),
                "a program prints errors at exit");
    }
    bus.kill();
    bus.waitForFinished();
    return "%1 programs that exit while they request the sleep inhibitor"_s.arg(all);
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication qtApplication(argc, argv);
    const QStringList arguments = qtApplication.arguments();
    if (arguments.value(1) == "--exit"_s)
        return exitOnAnotherThread(arguments.value(2).toULong());
    if (arguments.value(1) == "--save"_s)
        saveUntilKilled(arguments.value(2));
    if (arguments.value(1) == "--store"_s) {
        Core::Settings::instance().setApplicationDirPath(arguments.value(2));
        storeValues(arguments.value(2), arguments.value(3), arguments.value(4).toInt());
        return 0;
    }
    const int all = arguments.value(1).toInt();
    if (all < 100) {
        std::fputs("usage: soak CYCLES    (100 or more)\n", stderr);
        return 2;
    }

    int status = 0;
    const auto run = [&status](const char* name, const auto& kind) {
        try {
            std::printf("%s: %s\n", name, qPrintable(kind()));
        } catch (const std::exception& failure) {
            std::printf("%s: FAILED: %s\n", name, failure.what());
            status = 1;
        }
        std::fflush(stdout);
    };
    run("documents", [all] { return cycles(all); });
    run("kills", [all] { return kills(std::max(60, all * 6 / 100)); });
    run("shared settings", [all] { return sharedSettings(all * 8); });
    run("disks", [] { return fullDisks(); });
    run("connections", [all] { return connections(all); });
    run("exits", [all] { return exits(std::max(20, all * 3 / 100)); });
    return status;
}
