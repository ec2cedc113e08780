#include "session/RunCommand.h"

#include "CommandLine.h"
#include "process/CrashHandler.h"
#include "process/InterruptWatcher.h"
#include "process/Output.h"
#include "session/DocumentError.h"
#include "session/EventPrinter.h"
#include "session/HeartbeatChannel.h"
#include "session/SessionListener.h"
#include "session/SessionReceiver.h"
#include "SessionOptions.h"

#include <app/Application.h>
#include <events/SwitchScreenLayoutEvent.h>
#include <ovcore/BoardEthDescHandler.h>
#include <ovcore/ConsoleSingleton.h>
#include <ovdoc/DocObject.h>
#include <ovdoc/Document.h>
#include <ovdoc/Storage.h>
#include <ovdoc/Transaction.h>
#include <plugins/PluginLoader.h>
#include <registries/CommInfoRegistry.h>

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QEventLoop>
#include <QTimer>

#include <chrono>
#include <cstdio>
#include <limits>
#include <memory>
#include <optional>

namespace Host {

namespace {

/// Who the report says it was.
const QString host = QStringLiteral("host");

QString sampleDocument()
{
    const QDir samples(QCoreApplication::applicationDirPath() + QLatin1Char('/') +
                       QLatin1String(OVAPP_SAMPLES_PATH));
    return QDir::cleanPath(samples.filePath(QStringLiteral("documents/coaster.ovdoc")));
}

/// One piece more is finished, which is told to listeners of every kind that a change concerns,
/// and posted to Qt objects.
void changeDocument(Doc::Document* document, SessionReceiver& receiver)
{
    App::Application& application = App::Application::instance();
    Doc::Transaction transaction(QStringLiteral("Finish a piece"));
    const QSharedPointer<Doc::DocObject> object = document->storage()->queryDocObjectDirect();
    Laser::PrintCountParams counts = object->printCountData();
    // A counter that is full stays full.
    if (counts.finishedCount() < std::numeric_limits<int>::max())
        counts.setFinishedCount(counts.finishedCount() + 1);
    object->setPrintCountData(counts);

    application.notifyTransactionListeners(document, &transaction);
    application.notifyPropertyListeners(document, true, counts.finishedCount());
    application.notifyObjectListListener(document);
    application.notifySelectionListeners(document);

    constexpr int everyObjectType = -1;
    application.postTransactionEvent(transaction, true, everyObjectType, &receiver);
    application.postSelectionChangedEvent(nullptr);
    QCoreApplication::postEvent(
        &receiver, new Core::SwitchScreenLayoutEvent(
                       Core::BoardEthDescHandler::instance()->currentBoardEthDescType()));
}

/// Keeps the channels started until an interrupt if they are to `stay`, else for some heartbeats.
void runChannels(bool stay, EventPrinter& printer)
{
    App::CommInfoRegistry& channels = *App::CommInfoRegistry::instance();
    HeartbeatChannel heartbeat(printer, std::chrono::milliseconds(stay ? 1000 : 20));
    channels.registerCommInfo(&heartbeat);
    channels.start();
    QEventLoop loop;
    std::optional<InterruptWatcher> watcher;
    QTimer readerTimer;
    if (stay) {
        printer.print(host, QStringLiteral("keeps the channels started until Ctrl+C"));
        watcher.emplace([&loop] { loop.quit(); });
        QObject::connect(&readerTimer, &QTimer::timeout, &loop, [&loop] {
            // When nobody reads the report any more, there is nobody to stay for.
            if (std::ferror(stdout))
                loop.quit();
        });
        readerTimer.start(1000);
    } else {
        QTimer::singleShot(70, &loop, &QEventLoop::quit);
    }
    loop.exec();
    watcher.reset();
    channels.stop();
    channels.unregisterCommInfo(&heartbeat);
}

int cannotOpen(const QString& path)
{
    return fail(Failure,
                QStringLiteral("cannot open %1: %2").arg(quoted(path), documentError(path)));
}

/// The steps of the host itself: prints each one, and passes it to the crash handler.
class SessionProgress
{
public:
    explicit SessionProgress(EventPrinter& printer) : _printer(printer) {}

    void beginStep(const QString& step)
    {
        _printer.print(host, step);
        _crashHandler.setActivity(
            QStringLiteral("the host %1; ovapp-host plugins --profile examines the plug-ins")
                .arg(step));
    }
    EventPrinter& printer() { return _printer; }

private:
    EventPrinter& _printer;
    CrashHandler _crashHandler;
};

/// Opens the document, changes it, reverts it and closes it.
int useDocument(const QString& path, bool stay, SessionReceiver& receiver,
                SessionProgress& progress)
{
    App::Application& application = App::Application::instance();
    progress.beginStep(QStringLiteral("opens the document"));
    Doc::Document* document = application.openDocument(path);
    if (!document)
        return cannotOpen(path);

    progress.beginStep(QStringLiteral("changes the document, notifies and posts"));
    changeDocument(document, receiver);
    progress.beginStep(QStringLiteral("runs the event loop"));
    QCoreApplication::processEvents();

    progress.beginStep(QStringLiteral("starts and stops the channels"));
    runChannels(stay, progress.printer());

    progress.beginStep(QStringLiteral("reverts the document: activates it as it is on disk"));
    int status = Success;
    auto onDisk = std::make_unique<Doc::Document>(new Doc::Storage);
    if (onDisk->open(path))
        application.setActivateDocument(onDisk.release());
    else
        status = cannotOpen(path);

    progress.beginStep(QStringLiteral("closes the document"));
    application.closeDocument();
    return status;
}

void loadPlugins(SessionProgress& progress)
{
    using App::PluginLoader;
    progress.beginStep(QStringLiteral("loads and starts the plug-ins"));
    PluginLoader::initPluginIDValue();
    PluginLoader::loadPlugins(true);
    const QDir directory(PluginLoader::pluginsPath());
    const QList<App::PluginRecord> records = PluginLoader::records();
    for (const App::PluginRecord& record : records) {
        progress.printer().print(
            host, directory.relativeFilePath(record.filePath) +
                      (record.verdict == PluginLoader::Verdict::Accepted
                           ? QStringLiteral(" is accepted")
                           : QStringLiteral(" is refused; ovapp-host plugins says why")));
    }
    App::Application::instance().notifyPluginStateChangeListener(PluginLoader::pluginCount());
}

/// What an executable does between start-up and shutdown.
int useApplication(const QString& document, bool stay, SessionProgress& progress)
{
    SessionListener listener(progress.printer());
    SessionReceiver receiver(progress.printer());
    QCoreApplication::instance()->installEventFilter(&receiver);
    loadPlugins(progress);
    progress.beginStep(QStringLiteral("has completed its own start-up"));
    App::Application::instance().doAppStartFinished();

    const int status = useDocument(document, stay, receiver, progress);

    progress.beginStep(QStringLiteral("stops and unloads the plug-ins"));
    App::PluginLoader::unloadPlugins();
    return status;
}

} // namespace

int run(const QStringList& arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Runs a whole session on a document and prints what happens in it. The "
                       "document's file is not changed."));
    const QCommandLineOption document(QStringLiteral("document"),
                                      QStringLiteral("The document to open; a sample by default."),
                                      QStringLiteral("FILE"), sampleDocument());
    const QCommandLineOption stay(QStringLiteral("stay"),
                                  QStringLiteral("Keep the channels started until Ctrl+C."));
    parser.addOptions({document, stay});
    SessionOptions options(parser);
    if (const std::optional<int> status = options.parse(parser, arguments))
        return *status;

    EventPrinter printer;
    SessionProgress progress(printer);
    Core::ConsoleSingleton::instance().attachObserver(&printer);
    progress.beginStep(QStringLiteral("starts the library"));
    options.startLibrary();
    warnIfSettingsCannotBeKept();

    const int status = useApplication(parser.value(document), parser.isSet(stay), progress);

    progress.beginStep(QStringLiteral("stops the library"));
    App::Application::destruct();
    Core::ConsoleSingleton::instance().detachObserver(&printer);
    return status;
}

} // namespace Host
