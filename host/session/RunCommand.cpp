#include "CommandLine.h"
#include "Commands.h"
#include "Interrupts.h"
#include "Output.h"
#include "session/EventPrinter.h"
#include "session/SessionListener.h"
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
#include <registries/CommInfo.h>
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

QString sampleDocument()
{
    return QDir::cleanPath(QCoreApplication::applicationDirPath() +
                           QStringLiteral("/" OVAPP_SAMPLES_PATH "/documents/coaster.ovdoc"));
}

/// Counts one more finished piece, notifies the listeners of every kind that a change concerns, and
/// posts the events.
void changeDocument(Doc::Document* document, QObject& receiver)
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

/// A minimal communication channel. While it is started, it prints a line at regular intervals,
/// from the event loop.
class HeartbeatChannel : public App::CommInfo
{
public:
    HeartbeatChannel(EventPrinter& printer, std::chrono::milliseconds interval) : _printer(printer)
    {
        _timer.setInterval(interval);
        QObject::connect(&_timer, &QTimer::timeout, &_timer,
                         [this] { _printer.print(name(), QStringLiteral("is alive")); });
    }

    QString name() const override { return QStringLiteral("heartbeat channel"); }
    void start() override
    {
        _printer.print(name(), QStringLiteral("starts"));
        _timer.start();
    }
    void stop() override
    {
        _timer.stop();
        _printer.print(name(), QStringLiteral("stops"));
    }

private:
    EventPrinter& _printer;
    QTimer _timer;
};

/// Keeps the channels started until an interrupt if `stay` is true, otherwise for some heartbeats.
/// Returns an error message; empty if there is no error.
QString runChannels(bool stay, EventPrinter& printer)
{
    App::CommInfoRegistry& channels = *App::CommInfoRegistry::instance();
    HeartbeatChannel heartbeat(printer, std::chrono::milliseconds(stay ? 1000 : 20));
    channels.registerCommInfo(&heartbeat);
    channels.start();
    QEventLoop loop;
    // No plug-in is expected to call QCoreApplication::exit with this code.
    constexpr int ended = std::numeric_limits<int>::min();
    const auto end = [&loop] { loop.exit(ended); };
    QTimer endTimer;
    if (stay) {
        printer.printStep(QStringLiteral("keeps the channels started until Ctrl+C"));
        catchInterrupts();
        QObject::connect(&endTimer, &QTimer::timeout, &loop, [&end] {
            // Standard output has an error if its reader has ended.
            if (isInterrupted() || std::ferror(stdout))
                end();
        });
        endTimer.start(interruptPollInterval);
    } else {
        QTimer::singleShot(70, &loop, end);
    }
    const bool isEnded = loop.exec() == ended;
    channels.stop();
    channels.unregisterCommInfo(&heartbeat);
    return isEnded ? QString() : QStringLiteral("a plug-in has ended the event loop");
}

/// Opens the document, changes it, reverts it and closes it. Returns an error message; empty if
/// there is no error.
QString useDocument(const QString& path, bool stay, QObject& receiver, EventPrinter& printer)
{
    App::Application& application = App::Application::instance();
    auto onDisk = std::make_unique<Doc::Document>(new Doc::Storage);
    const auto openError = [&onDisk, &path] {
        return onDisk->open(path)
                   ? QString()
                   : QStringLiteral("cannot open %1: %2").arg(quoted(path), onDisk->errorString());
    };
    printer.printStep(QStringLiteral("opens the document"));
    Doc::Document* document = application.openDocument(path);
    if (!document)
        return openError();

    printer.printStep(QStringLiteral("changes the document, notifies and posts"));
    changeDocument(document, receiver);
    printer.printStep(QStringLiteral("runs the event loop"));
    QCoreApplication::processEvents();

    printer.printStep(QStringLiteral("starts and stops the channels"));
    QString error = runChannels(stay, printer);

    printer.printStep(QStringLiteral("reverts the document to the file's content"));
    const QString revertError = openError();
    if (revertError.isEmpty())
        application.setActivateDocument(onDisk.release());
    else
        error = revertError;

    printer.printStep(QStringLiteral("closes the document"));
    application.closeDocument();
    return error;
}

/// Returns the path of a plug-in file as the session shows it.
QString relativePath(const QString& file)
{
    return QDir(PluginLoader::pluginsPath()).relativeFilePath(file);
}

void loadPlugins(EventPrinter& printer)
{
    printer.printStep(QStringLiteral("loads and starts the plug-ins"));
    PluginLoader::initPluginIDValue();
    PluginLoader::setStepHandler([&printer](const QString& file, PluginLoader::Step step) {
        constexpr const char* names[] = {"loads", "queries", "starts", "stops", "unloads"};
        printer.printStep(QLatin1String(names[static_cast<int>(step)]) + QLatin1Char(' ') +
                          relativePath(file));
    });
    PluginLoader::loadPlugins(true);
    printer.printStep(QStringLiteral("lists the plug-ins"));
    const QList<App::PluginRecord> records = PluginLoader::records();
    for (const App::PluginRecord& record : records) {
        printer.printStep(relativePath(record.filePath) + QLatin1String(": ") +
                          verdictText(record.verdictName(), record.reason));
    }
    App::Application::instance().notifyPluginStateChangeListener(PluginLoader::pluginCount());
}

/// Executes the session between start-up and shutdown. Returns an error message; empty if there is
/// no error.
QString useApplication(const QString& document, bool stay, EventPrinter& printer)
{
    SessionListener listener(printer);
    loadPlugins(printer);
    printer.printStep(QStringLiteral("completes its start-up"));
    App::Application::instance().doAppStartFinished();

    QString error = useDocument(document, stay, listener, printer);

    printer.printStep(QStringLiteral("stops and unloads the plug-ins"));
    PluginLoader::unloadPlugins();
    PluginLoader::setStepHandler(nullptr);
    return error;
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

    EventPrinter printer;
    Core::ConsoleSingleton::instance().attachObserver(&printer);
    printer.printStep(QStringLiteral("starts the library"));
    options.startLibrary();
    warnIfSettingsCannotBeKept();

    const QString error = useApplication(parser.value(document), parser.isSet(stay), printer);

    printer.printStep(QStringLiteral("stops the library"));
    App::Application::destruct();
    Core::ConsoleSingleton::instance().detachObserver(&printer);
    return error.isEmpty() ? Success : fail(Failure, error);
}

} // namespace Host
