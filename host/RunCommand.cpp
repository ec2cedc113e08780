#include "RunCommand.h"

#include "CommandLine.h"
#include "DocumentProblem.h"
#include "HeartbeatChannel.h"
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

void runChannels(Report& report)
{
    App::CommInfoRegistry& channels = *App::CommInfoRegistry::instance();
    HeartbeatChannel heartbeat(report);
    channels.registerCommInfo(&heartbeat);
    channels.start();
    QEventLoop loop;
    QTimer::singleShot(70, &loop, &QEventLoop::quit);
    loop.exec();
    channels.stop();
    channels.unregisterCommInfo(&heartbeat);
}

int cannotOpen(const QString& path)
{
    return fail(JobFailed,
                QStringLiteral("cannot open %1: %2").arg(quoted(path), documentProblem(path)));
}

/// Opens the document, changes it, reverts it and closes it.
int useDocument(const QString& path, SessionReceiver& receiver, Report& report)
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
    runChannels(report);

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

void loadPlugins(Report& report)
{
    using App::PluginLoader;
    report.line(host, QStringLiteral("loads and starts the plug-ins"));
    PluginLoader::initPluginIDValue();
    PluginLoader::loadPlugins(true);
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
int useApplication(const QString& document, Report& report)
{
    SessionListener listener(report);
    SessionReceiver receiver(report);
    QCoreApplication::instance()->installEventFilter(&receiver);
    loadPlugins(report);
    report.line(host, QStringLiteral("has completed its own start-up"));
    App::Application::instance().doAppStartFinished();

    const int status = useDocument(document, receiver, report);

    report.line(host, QStringLiteral("stops and unloads the plug-ins"));
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
    parser.addOption(document);
    SessionOptions options(parser);
    if (const std::optional<int> status = parse(parser, arguments))
        return *status;
    if (const std::optional<int> status = noArguments(parser))
        return *status;
    if (const std::optional<int> status = options.read(parser))
        return *status;

    Report report;
    Core::ConsoleSingleton::instance().attachObserver(&report);
    report.line(host, QStringLiteral("starts the library"));
    options.startLibrary();

    const int status = useApplication(parser.value(document), report);

    report.line(host, QStringLiteral("stops the library"));
    App::Application::destruct();
    Core::ConsoleSingleton::instance().detachObserver(&report);
    return status;
}

} // namespace Host
