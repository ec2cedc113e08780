#include "CommandLine.h"
#include "Commands.h"
#include "inspection/PluginInspector.h"
#include "Output.h"
#include "SessionOptions.h"

#include <app/Application.h>
#include <plugins/PluginLoader.h>
#include <registries/CommInfoRegistry.h>
#include <registries/ExtendPluginRegistry.h>

#include <QCommandLineParser>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#ifdef Q_OS_WIN
#include <io.h>
#include <qt_windows.h>
#else
#include <fcntl.h>
#include <unistd.h>
#endif
#ifdef Q_OS_LINUX
#include <csignal>
#include <sys/prctl.h>
#endif

namespace Host {

namespace {

using App::PluginLoader;
using App::PluginRecord;

std::FILE* resultPipe = nullptr;

void sendMessage(const QJsonObject& members)
{
    // Without a reader of the results, the inspection is not needed.
    if (!write(resultPipe, QJsonDocument(members).toJson(QJsonDocument::Compact) + '\n'))
        std::_Exit(Failure);
}

void sendVerdict(const QString& verdict, const QString& reason)
{
    sendMessage({{QStringLiteral("verdict"), verdict},
                 {QLatin1String(InspectionProtocol::reason), reason}});
}

void sendActivity(const char* activity)
{
    sendMessage({{QLatin1String(InspectionProtocol::activity), QLatin1String(activity)}});
}

/// Reserves standard output for the results, and redirects other output to standard error.
bool redirectStandardOutput()
{
    std::fflush(stdout);
#ifdef Q_OS_WIN
    resultPipe = _fdopen(_dup(1), "w");
    return resultPipe && _dup2(2, 1) == 0;
#else
    resultPipe = ::fdopen(::fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 0), "w");
    return resultPipe && ::dup2(STDERR_FILENO, STDOUT_FILENO) != -1;
#endif
}

/// Ends with the parent, and without a dialog, which would keep a crashed process running.
void prepareForEnd()
{
#ifdef Q_OS_WIN
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX);
#elif defined(Q_OS_LINUX)
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
#endif
}

/// Sends what the loader knows about the file so far.
void sendRecord(const PluginRecord& record)
{
    sendVerdict(record.verdictName(), record.reason);
    QJsonObject members;
    const auto addText = [&members](const char* key, const QString& text) {
        if (!text.isEmpty())
            members.insert(QLatin1String(key), text);
    };
    const auto addNumber = [&addText](const char* key, quint64 number) {
        if (number != 0)
            addText(key, QLatin1String("0x") + QString::number(number, 16));
    };
    const auto addTime = [&members](const char* key, double milliseconds) {
        if (milliseconds >= 0)
            members.insert(QLatin1String(key), milliseconds);
    };
    addText("name", record.info.get(QStringLiteral("Name")).toString());
    addText("version", record.info.get(QStringLiteral("Version")).toString());
    addText("built_for", record.builtFor);
    addNumber("identifier", record.identifier);
    addNumber("boards", static_cast<quint32>(record.boardTypes));
    addTime("load_ms", record.loadTime);
    addTime("start_ms", record.startTime);
    addTime("stop_ms", record.stopTime);
    sendMessage(members);
}

/// The numbers of objects that are registered.
struct Registrations
{
    int channels = App::CommInfoRegistry::instance()->count();
    int extensions = App::ExtendPluginRegistry::instance().count();
    int listeners = App::Application::instance().listenerCount();
};

/// Loads and unloads the file, and sends each step and the record.
void inspect(const QString& file, bool isProfiled)
{
    Registrations before;
    Registrations after;
    PluginLoader::setStepHandler([&](const QString&, PluginLoader::Step step) {
        // The step may end the process.
        const QList<PluginRecord> records = PluginLoader::records();
        if (!records.isEmpty())
            sendRecord(records.constFirst());
        if (step == PluginLoader::Step::Start)
            before = Registrations();
        if (step == PluginLoader::Step::Unload)
            after = Registrations();
        constexpr const char* activities[] = {"it was loaded", "its queries were called",
                                              "it was started", "it was stopped",
                                              "it was unloaded"};
        sendActivity(activities[static_cast<int>(step)]);
    });
    PluginLoader::loadFile(file, isProfiled);
    PluginLoader::unloadPlugins();
    PluginLoader::setStepHandler(nullptr);

    const PluginRecord record = PluginLoader::records().constFirst();
    sendRecord(record);
    if (record.verdict != PluginRecord::Verdict::Accepted)
        return;
    if (!record.reason.isEmpty())
        return sendVerdict(QStringLiteral("exception"), record.reason);
    const int channels = std::max(after.channels - before.channels, 0);
    const int extensions = std::max(after.extensions - before.extensions, 0);
    const int listeners = std::max(after.listeners - before.listeners, 0);
    if (isProfiled && channels + extensions + listeners > 0) {
        sendVerdict(
            QStringLiteral("incomplete-stop"),
            QStringLiteral(
                "stop() leaves objects registered (channels: %1, extensions: %2, listeners: %3)")
                .arg(channels)
                .arg(extensions)
                .arg(listeners));
    }
}

} // namespace

int inspectPlugin(const QStringList& arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Inspects one plug-in file and sends the results to \"plugins\"."));
    parser.addPositionalArgument(QStringLiteral("FILE"), QStringLiteral("The file."));
    SessionOptions options(parser);
    const QCommandLineOption profile(QStringLiteral("profile"),
                                     QStringLiteral("Also start the plug-in."));
    parser.addOption(profile);
    if (const std::optional<int> exitCode = options.parse(parser, arguments))
        return *exitCode;
    const QStringList files = parser.positionalArguments();
    if (files.size() != 1)
        return fail(UsageError, QStringLiteral("expected one file, got %1").arg(files.size()));
    if (!redirectStandardOutput())
        return fail(Failure, QStringLiteral("cannot redirect standard output"));

    prepareForEnd();
    sendActivity("the library was initialised");
    options.startLibrary();
    inspect(files.first(), parser.isSet(profile));
    sendActivity(InspectionProtocol::lastActivity);
    App::Application::destruct();
    return Success;
}

} // namespace Host
