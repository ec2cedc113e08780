#include "RunCommand.h"

#include "CommandLine.h"
#include "DocumentProblem.h"
#include "HeartbeatChannel.h"
#include "InterruptWatcher.h"
#include "LastWords.h"
#include "Output.h"
#include "Report.h"
#include "SessionListener.h"
#include "SessionOptions.h"
#include "SessionReceiver.h"

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
#include <QPluginLoader>
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
void runChannels(bool stay, Report& report)
{
    using namespace std::chrono_literals;
    App::CommInfoRegistry& channels = *App::CommInfoRegistry::instance();
    HeartbeatChannel heartbeat(report, stay ? 1s : 20ms);
    channels.registerCommInfo(&heartbeat);
    channels.start();
    QEventLoop loop;
    std::optional<InterruptWatcher> watcher;
    QTimer readerTimer;
    if (stay) {
        report.line(host, QStringLiteral("keeps the channels started until Ctrl+C"));
        watcher.emplace([&loop] { loop.quit(); });
        QObject::connect(&readerTimer, &QTimer::timeout, &loop, [&loop] {
            // When nobody reads the report any more, there is nobody to stay for.
            if (std::ferror(stdout))
                loop.quit();
        });
        readerTimer.start(1s);
    } else {
        QTimer::singleShot(70ms, &loop, &QEventLoop::quit);
    }
    loop.exec();
    watcher.reset();
    channels.stop();
    channels.unregisterCommInfo(&heartbeat);
}

int cannotOpen(const QString& path)
{
    return fail(JobFailed,
                QStringLiteral("cannot open %1: %2").arg(quoted(path), documentProblem(path)));
}

/// Opens the document, changes it, reverts it and closes it.
int useDocument(const QString& path, bool stay, SessionReceiver& receiver, Report& report)
{
    App::Application& application = App::Application::instance();
    report.line(host, QStringLiteral("opens the document"));
    Doc::Document* document = application.openDocument(path);
    if (!document)
        return cannotOpen(path);

    report.line(host, QStringLiteral("changes the document, notifies and posts"));
    changeDocument(document, receiver);
    report.line(host, QStringLiteral("runs the event loop"));
    QCoreApplication::processEvents();

    report.line(host, QStringLiteral("starts and stops the channels"));
    runChannels(stay, report);

    report.line(host, QStringLiteral("reverts the document: activates it as it is on disk"));
    int status = Success;
    auto onDisk = std::make_unique<Doc::Document>(new Doc::Storage);
    if (onDisk->open(path))
        application.setActivateDocument(onDisk.release());
    else
        status = cannotOpen(path);

    report.line(host, QStringLiteral("closes the document"));
    application.closeDocument();
    return status;
}

/// What is said if a plug-in ends the program while something `isDone` with all of them.
LastWords lastWords(const char* isDone)
{
    return {
        failureLine(
            QStringLiteral("a plug-in has ended the program while the plug-ins were %1; ovapp-host "
                           "plugins --profile says which one")
                .arg(QLatin1String(isDone))),
        JobFailed};
}

void loadPlugins(Report& report)
{
    using App::PluginLoader;
    report.line(host, QStringLiteral("loads and starts the plug-ins"));
    PluginLoader::initPluginIDValue();
    {
        const LastWords words = lastWords("loaded and started");
        PluginLoader::loadPlugins(true);
    }
    const QDir directory(PluginLoader::pluginsPath());
    for (const QString& file : PluginLoader::pluginFiles()) {
        report.line(host, directory.relativeFilePath(file) +
                              (QPluginLoader(file).isLoaded()
                                   ? QStringLiteral(" is accepted")
                                   : QStringLiteral(" is refused; ovapp-host plugins says why")));
    }
    App::Application::instance().notifyPluginStateChangeListener(PluginLoader::pluginCount());
}

/// What an executable does between start-up and shutdown.
int useApplication(const QString& document, bool stay, Report& report)
{
    SessionListener listener(report);
    SessionReceiver receiver(report);
    QCoreApplication::instance()->installEventFilter(&receiver);
    loadPlugins(report);
    report.line(host, QStringLiteral("has completed its own start-up"));
    App::Application::instance().doAppStartFinished();

    const int status = useDocument(document, stay, receiver, report);

    report.line(host, QStringLiteral("stops and unloads the plug-ins"));
    const LastWords words = lastWords("stopped and unloaded");
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

    Report report;
    Core::ConsoleSingleton::instance().attachObserver(&report);
    report.line(host, QStringLiteral("starts the library"));
    options.startLibrary();

    const int status = useApplication(parser.value(document), parser.isSet(stay), report);

    report.line(host, QStringLiteral("stops the library"));
    App::Application::destruct();
    Core::ConsoleSingleton::instance().detachObserver(&report);
    return status;
}

} // namespace Host
