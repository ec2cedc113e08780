#include "RunCommand.h"

#include "CommandLine.h"
#include "DocumentProblem.h"
#include "HeartbeatChannel.h"
#include "Report.h"
#include "SessionListener.h"
#include "SessionReceiver.h"

#include <app/Application.h>
#include <events/SwitchScreenLayoutEvent.h>
#include <ovcore/BoardEthDescHandler.h>
#include <ovcore/ConsoleSingleton.h>
#include <ovcore/Settings.h>
#include <ovdoc/DocObject.h>
#include <ovdoc/Document.h>
#include <ovdoc/Storage.h>
#include <ovdoc/Transaction.h>
#include <registries/CommInfoRegistry.h>

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QEventLoop>
#include <QSettings>
#include <QTimer>

namespace Host {

namespace {

struct Options
{
    QString document;
    QString applicationDir;
    std::optional<int> boardType;
};

QString sampleDocument()
{
    const QDir samples(QCoreApplication::applicationDirPath() + QLatin1Char('/') +
                       QLatin1String(OVAPP_SAMPLES_PATH));
    return QDir::cleanPath(samples.filePath(QStringLiteral("documents/coaster.ovdoc")));
}

/// Fills `options`, or returns the status to end with.
std::optional<int> read(const QStringList& arguments, Options& options)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Runs a whole session on a document and prints what happens in it. The "
                       "document's file is not changed."));
    const QCommandLineOption document(QStringLiteral("document"),
                                      QStringLiteral("The document to open; a sample by default."),
                                      QStringLiteral("FILE"), sampleDocument());
    const QCommandLineOption applicationDir(
        QStringLiteral("app-dir"),
        QStringLiteral("Where settings and log are kept; the executable's directory by default."),
        QStringLiteral("DIR"));
    const QCommandLineOption board(
        QStringLiteral("board"),
        QStringLiteral("The type of the control board; the setting \"Board/type\" by default."),
        QStringLiteral("TYPE"));
    parser.addOptions({document, applicationDir, board});
    if (const std::optional<int> status = parse(parser, arguments))
        return status;

    if (!parser.positionalArguments().isEmpty()) {
        return fail(BadUsage, QStringLiteral("run takes no argument %1; a document is given with "
                                             "--document")
                                  .arg(quoted(parser.positionalArguments().first())));
    }
    options.document = parser.value(document);
    options.applicationDir = parser.value(applicationDir);
    if (parser.isSet(board)) {
        bool isNumber = false;
        options.boardType = parser.value(board).toInt(&isNumber);
        if (!isNumber) {
            return fail(BadUsage, QStringLiteral("--board: %1 is no 32-bit whole number")
                                      .arg(quoted(parser.value(board))));
        }
    }
    return std::nullopt;
}

void warnIfSettingsCannotBeKept()
{
    const QDir directory(Core::Settings::instance().applicationDirPath());
    const QSettings store(directory.filePath(QStringLiteral("ovapp.ini")), QSettings::IniFormat);
    if (!store.isWritable()) {
        warn(QStringLiteral("%1 cannot be written: settings will be lost")
                 .arg(quoted(store.fileName())));
    }
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
    application.notifyPluginStateChangeListener(0);

    constexpr int everyObjectType = -1;
    application.postTransactionEvent(transaction, true, everyObjectType, &receiver);
    application.postSelectionChangedEvent(nullptr);
    QCoreApplication::postEvent(
        &receiver, new Core::SwitchScreenLayoutEvent(
                       Core::BoardEthDescHandler::instance()->currentBoardEthDescType()));
}

void runChannel(Report& report)
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

/// What an executable does between start-up and shutdown.
int useApplication(const Options& options, Report& report)
{
    const auto host = [&report](const QString& what) { report.line(QStringLiteral("host"), what); };
    App::Application& application = App::Application::instance();
    SessionListener listener(report);
    SessionReceiver receiver(report);
    QCoreApplication::instance()->installEventFilter(&receiver);
    host(QStringLiteral("has completed its own start-up"));
    application.doAppStartFinished();

    host(QStringLiteral("opens the document"));
    Doc::Document* document = application.openDocument(options.document);
    if (!document)
        return cannotOpen(options.document);

    host(QStringLiteral("changes the document, notifies and posts"));
    changeDocument(document, receiver);
    host(QStringLiteral("runs the event loop"));
    QCoreApplication::processEvents();

    host(QStringLiteral("starts and stops the channels"));
    runChannel(report);

    host(QStringLiteral("reverts the document: activates it as it is on disk"));
    int status = Success;
    auto onDisk = std::make_unique<Doc::Document>(new Doc::Storage);
    if (onDisk->open(options.document))
        application.setActivateDocument(onDisk.release());
    else
        status = cannotOpen(options.document);

    host(QStringLiteral("closes the document"));
    application.closeDocument();
    return status;
}

} // namespace

int run(const QStringList& arguments)
{
    Options options;
    if (const std::optional<int> status = read(arguments, options))
        return *status;

    Report report;
    Core::ConsoleSingleton::instance().attachObserver(&report);
    if (!options.applicationDir.isEmpty()) {
        QDir().mkpath(options.applicationDir);
        Core::Settings::instance().setApplicationDirPath(options.applicationDir);
    }

    report.line(QStringLiteral("host"), QStringLiteral("starts the library"));
    App::Application::init();
    warnIfSettingsCannotBeKept();
    if (options.boardType)
        Core::BoardEthDescHandler::instance()->setCurrentBoardEthDescType(*options.boardType);

    const int status = useApplication(options, report);

    report.line(QStringLiteral("host"), QStringLiteral("stops the library"));
    App::Application::destruct();
    Core::ConsoleSingleton::instance().detachObserver(&report);
    return status;
}

} // namespace Host
