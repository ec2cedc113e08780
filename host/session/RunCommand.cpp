#include "session/RunCommand.h"

#include "CommandLine.h"
#include "process/CrashHandler.h"
#include "process/InterruptWatcher.h"
#include "process/Output.h"
#include "process/QtApplication.h"
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
#include <ovcore/Settings.h>
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

using App::PluginLoader;

/// The source of the events of the host itself.
const QString host = QStringLiteral("host");

QString sampleDocument()
{
    const QDir samples(QCoreApplication::applicationDirPath() + QLatin1Char('/') +
                       QLatin1String(OVAPP_SAMPLES_PATH));
    return QDir::cleanPath(samples.filePath(QStringLiteral("documents/coaster.ovdoc")));
}

/// Counts one more finished piece, notifies the listeners of every kind that a change concerns, and
/// posts the events.
void changeDocument(Doc::Document* document, SessionReceiver& receiver)
{
    App::Application& application = App::Application::instance();
    Doc::Transaction transaction(QStringLiteral("Finish a piece"));
    const QSharedPointer<Doc::DocObject> object = document->storage()->queryDocObjectDirect();
    Laser::PrintCountParams counts = object->printCountData();
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

/// Keeps the channels started until an interrupt if `stay` is true, otherwise for some heartbeats.
/// Returns the exit code.
int runChannels(bool stay, EventPrinter& printer)
{
    App::CommInfoRegistry& channels = *App::CommInfoRegistry::instance();
    HeartbeatChannel heartbeat(printer, std::chrono::milliseconds(stay ? 1000 : 20));
    channels.registerCommInfo(&heartbeat);
    channels.start();
    QEventLoop loop;
    bool isEnded = false;
    const auto end = [&loop, &isEnded] {
        isEnded = true;
        loop.quit();
    };
    std::optional<InterruptWatcher> watcher;
    QTimer readerTimer;
    if (stay) {
        printer.print(host, QStringLiteral("keeps the channels started until Ctrl+C"));
        watcher.emplace(end);
        QObject::connect(&readerTimer, &QTimer::timeout, &loop, [&end] {
            // The reader of the output has ended.
            if (std::ferror(stdout))
                end();
        });
        readerTimer.start(1000);
    } else {
        QTimer::singleShot(70, &loop, end);
    }
    loop.exec();
    watcher.reset();
    channels.stop();
    channels.unregisterCommInfo(&heartbeat);
    return isEnded ? Success : fail(Failure, QStringLiteral("a plug-in has ended the event loop"));
}

/// The path of a plug-in file as the session shows it.
QString relativePluginPath(const QString& file)
{
    return QDir(PluginLoader::pluginsPath()).relativeFilePath(file);
}

int cannotOpen(const QString& path)
{
    return fail(Failure,
                QStringLiteral("cannot open %1: %2").arg(quoted(path), documentError(path)));
}

/// Prints each step of the host and passes it to the crash handler.
class SessionProgress
{
public:
    explicit SessionProgress(EventPrinter& printer) : _printer(printer) {}

    void beginStep(const QString& step)
    {
        _printer.print(host, step);
        _crashHandler.setActivity(
            QStringLiteral("the host %1; %2 plugins --profile inspects the plug-ins")
                .arg(step, executableName));
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
    int exitCode = runChannels(stay, progress.printer());

    progress.beginStep(QStringLiteral("reverts the document to the file's content"));
    auto onDisk = std::make_unique<Doc::Document>(new Doc::Storage);
    if (onDisk->open(path))
        application.setActivateDocument(onDisk.release());
    else
        exitCode = cannotOpen(path);

    progress.beginStep(QStringLiteral("closes the document"));
    application.closeDocument();
    return exitCode;
}

void loadPlugins(SessionProgress& progress)
{
    progress.beginStep(QStringLiteral("loads and starts the plug-ins"));
    PluginLoader::initPluginIDValue();
    PluginLoader::setProgressHandler([&progress](const QString& file, int index, int count) {
        progress.beginStep(QStringLiteral("loads and starts %1 (%2 of %3)")
                               .arg(relativePluginPath(file))
                               .arg(index + 1)
                               .arg(count));
    });
    PluginLoader::loadPlugins(true);
    PluginLoader::setProgressHandler(nullptr);
    progress.beginStep(QStringLiteral("lists the plug-ins"));
    const QList<App::PluginRecord> records = PluginLoader::records();
    for (const App::PluginRecord& record : records) {
        QString result = relativePluginPath(record.filePath);
        result += record.verdict == PluginLoader::Verdict::Accepted ? QStringLiteral(" is accepted")
                                                                    : QStringLiteral(" is refused");
        if (!record.reason.isEmpty())
            result += QLatin1String(": ") + record.reason;
        progress.printer().print(host, result);
    }
    App::Application::instance().notifyPluginStateChangeListener(PluginLoader::pluginCount());
}

/// Does what `PluginLoader::unloadPlugins` does, with a step for each plug-in.
void unloadPlugins(SessionProgress& progress)
{
    progress.beginStep(QStringLiteral("stops and unloads the plug-ins"));
    const QList<App::PluginRecord> records = PluginLoader::records();
    for (auto record = records.crbegin(); record != records.crend(); ++record) {
        if (!record->rootObject)
            continue;
        progress.beginStep(
            QStringLiteral("stops and unloads %1").arg(relativePluginPath(record->filePath)));
        PluginLoader::unloadPlugin(record->filePath);
    }
}

/// Creates the application object of Qt that the plug-ins need.
void prepareForPlugins(const QString& directory)
{
    Core::Settings::instance().setPluginDirPath(directory);
    const QStringList files = PluginLoader::pluginFiles();
    QtApplication::prepareFor(files);
    for (const QString& file : files) {
        const QString error = QtApplication::widgetsError(file);
        if (!error.isEmpty())
            warn(quoted(file) + QLatin1String(": ") + error);
    }
}

/// Executes the session between start-up and shutdown.
int useApplication(const QString& document, bool stay, SessionProgress& progress)
{
    SessionListener listener(progress.printer());
    SessionReceiver receiver(progress.printer());
    QCoreApplication::instance()->installEventFilter(&receiver);
    loadPlugins(progress);
    progress.beginStep(QStringLiteral("completes its start-up"));
    App::Application::instance().doAppStartFinished();

    const int exitCode = useDocument(document, stay, receiver, progress);

    unloadPlugins(progress);
    return exitCode;
}

} // namespace

int run(const QStringList& arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Runs a whole session on a document and prints every event. The document's "
                       "file is not changed."));
    const QCommandLineOption document(QStringLiteral("document"),
                                      QStringLiteral("The document; by default a sample."),
                                      QStringLiteral("FILE"), sampleDocument());
    const QCommandLineOption stay(QStringLiteral("stay"),
                                  QStringLiteral("Keep the channels started until Ctrl+C."));
    parser.addOptions({document, stay});
    SessionOptions options(parser);
    if (const std::optional<int> exitCode = options.parse(parser, arguments))
        return *exitCode;
    if (!parser.positionalArguments().isEmpty()) {
        return fail(UsageError, QStringLiteral("unexpected argument %1")
                                    .arg(quoted(parser.positionalArguments().constFirst())));
    }

    prepareForPlugins(options.pluginDir());
    EventPrinter printer;
    SessionProgress progress(printer);
    Core::ConsoleSingleton::instance().attachObserver(&printer);
    progress.beginStep(QStringLiteral("starts the library"));
    options.startLibrary();
    warnIfSettingsCannotBeKept();

    const int exitCode = useApplication(parser.value(document), parser.isSet(stay), progress);

    progress.beginStep(QStringLiteral("stops the library"));
    App::Application::destruct();
    Core::ConsoleSingleton::instance().detachObserver(&printer);
    return exitCode;
}

} // namespace Host
