#include "inspection/InspectPluginCommand.h"

#include "CommandLine.h"
#include "inspection/PluginReport.h"
#include "inspection/RemainingListeners.h"
#include "Output.h"
#include "SessionOptions.h"

#include <app/Application.h>
#include <plugins/PluginInterface.h>
#include <plugins/PluginLoader.h>
#include <registries/CommInfoRegistry.h>
#include <registries/ExtendPluginRegistry.h>

#include <QCommandLineParser>
#include <QElapsedTimer>
#include <QJsonDocument>
#include <QPluginLoader>

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
using Verdict = PluginLoader::Verdict;

std::FILE* resultPipe = nullptr;

void sendMessage(const QJsonObject& parts)
{
    // Without a reader of the results, the inspection is not needed.
    if (!write(resultPipe, QJsonDocument(parts).toJson(QJsonDocument::Compact) + '\n'))
        std::_Exit(Failure);
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

template <typename Call>
QJsonObject timeOf(const QString& key, Call call)
{
    QElapsedTimer timer;
    timer.start();
    call();
    return {{key, static_cast<double>(timer.nsecsElapsed()) / 1e6}};
}

QString hexadecimal(quint64 number)
{
    return QLatin1String("0x") + QString::number(number, 16);
}

/// Starts and stops an accepted plug-in.
void profile(App::PluginInterface& plugin)
{
    const int channelCount = App::CommInfoRegistry::instance()->count();
    const int extensionCount = App::ExtendPluginRegistry::instance().count();
    sendActivity("it was started");
    sendMessage(timeOf(QStringLiteral("start_ms"), [&plugin] { plugin.start(); }));
    sendActivity("it was stopped");
    sendMessage(timeOf(QStringLiteral("stop_ms"), [&plugin] { plugin.stop(); }));
    const int channelsLeft = std::max(App::CommInfoRegistry::instance()->count() - channelCount, 0);
    const int extensionsLeft =
        std::max(App::ExtendPluginRegistry::instance().count() - extensionCount, 0);
    if (channelsLeft + extensionsLeft > 0) {
        sendMessage(verdictParts(
            QStringLiteral("incomplete-stop"),
            QStringLiteral("stop() leaves objects registered (channels: %1, extensions: %2)")
                .arg(channelsLeft)
                .arg(extensionsLeft)));
    }
}

void inspect(const QString& file, bool isProfiled)
{
    QPluginLoader loader;
    App::PluginRecord record;
    sendActivity("it was loaded");
    sendMessage(timeOf(QStringLiteral("load_ms"), [&file, &loader, &record] {
        record = PluginLoader::recordOf(file, loader);
    }));

    sendActivity("its queries were called");
    PluginLoader::inspect(record);
    auto* plugin = qobject_cast<App::PluginInterface*>(record.rootObject);
    if (plugin && record.verdict != Verdict::Exception) {
        sendMessage({{QStringLiteral("boards"),
                      hexadecimal(static_cast<quint32>(plugin->supportedBoardTypes()))},
                     {QStringLiteral("identifier"), hexadecimal(plugin->pluginID())}});
    }
    const QString name = record.info.get(QStringLiteral("Name")).toString();
    if (!name.isEmpty())
        sendMessage({{QStringLiteral("name"), name}});
    sendMessage(verdictParts(PluginLoader::verdictName(record.verdict), record.reason));

    const bool isStarted = isProfiled && record.verdict == Verdict::Accepted;
    if (isStarted)
        profile(*plugin);
    const QMetaObject* metaObject = record.rootObject ? record.rootObject->metaObject() : nullptr;
    sendActivity("it was unloaded");
    loader.unload();
    if (isStarted) {
        sendActivity("a listener was called that stop() had left registered");
        callRemainingListeners(metaObject);
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
                                     QStringLiteral("Also start and stop the plug-in."));
    parser.addOption(profile);
    if (const std::optional<int> exitCode = options.parse(parser, arguments))
        return *exitCode;
    const QStringList files = parser.positionalArguments();
    if (files.size() != 1)
        return fail(UsageError, QStringLiteral("expected one file, got %1").arg(files.size()));
    if (!redirectStandardOutput())
        return fail(Failure, QStringLiteral("cannot redirect standard output"));

#ifdef Q_OS_WIN
    // A dialog would keep a crashed process until the time limit.
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX);
#endif
#ifdef Q_OS_LINUX
    ::prctl(PR_SET_PDEATHSIG, SIGKILL); // if the parent ends first
#endif
    sendActivity("the library was initialised");
    options.startLibrary();
    inspect(files.first(), parser.isSet(profile));
    sendActivity(InspectionProtocol::lastActivity);
    App::Application::destruct();
    return Success;
}

} // namespace Host
