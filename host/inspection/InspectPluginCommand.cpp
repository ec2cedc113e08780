#include "inspection/InspectPluginCommand.h"

#include "CommandLine.h"
#include "inspection/PluginReport.h"
#include "process/FatalSignals.h"
#include "process/Output.h"
#include "SessionOptions.h"

#include <app/Application.h>
#include <plugins/PluginInterface.h>
#include <plugins/PluginLoader.h>

#include <QCommandLineParser>
#include <QElapsedTimer>
#include <QJsonDocument>
#include <QPluginLoader>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>

#ifdef Q_OS_WIN
#include <io.h>
#include <qt_windows.h>
#else
#include <fcntl.h>
#include <sys/resource.h>
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
    // Without anyone who listens there is no reason to go on.
    if (!write(resultPipe, QJsonDocument(parts).toJson(QJsonDocument::Compact) + '\n'))
        std::_Exit(Failure);
}

void sendActivity(const char* activity)
{
    sendMessage({{QLatin1String(InspectionProtocol::activity), QLatin1String(activity)}});
}

/// Keeps the standard output for what is told, and has what others print there go where errors go.
bool takeStandardOutput()
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

/// A crash is told by whoever started the process: no other traces are wanted of it. Nor is the
/// process to be left alone with a plug-in.
void prepareForTheWorst()
{
#ifdef Q_OS_WIN
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX);
#else
    // One byte is too little for a core, and other than none keeps also those from coming that the
    // system hands to a program.
    rlimit limit = {};
    ::getrlimit(RLIMIT_CORE, &limit);
    limit.rlim_cur = std::min<rlim_t>(limit.rlim_max, 1);
    ::setrlimit(RLIMIT_CORE, &limit);
#endif
#ifdef Q_OS_LINUX
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
#endif
#ifndef Q_OS_WIN
    static const pid_t process = ::getpid();
#endif
    std::set_terminate([] {
#ifndef Q_OS_WIN
        // A child that the plug-in forks does not decide on the plug-in.
        if (::getpid() != process)
            std::abort();
#endif
        sendMessage(
            {{QLatin1String(InspectionProtocol::terminationReason), describeCurrentException()}});
        std::_Exit(Failure);
    });
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

void examine(const QString& file, bool profiled)
{
    QPluginLoader loader;
    App::PluginRecord record;
    sendActivity("it was loaded");
    sendMessage(timeOf(QStringLiteral("load_ms"), [&file, &loader, &record] {
        record = PluginLoader::recordOf(file, loader);
    }));

    sendActivity("it was asked what it is");
    PluginLoader::inspect(record);
    const bool isAccepted = record.verdict == Verdict::Accepted;
    auto* plugin = qobject_cast<App::PluginInterface*>(record.rootObject);
    if (plugin && record.verdict != Verdict::Exception) {
        sendMessage({{QStringLiteral("boards"),
                      hexadecimal(static_cast<quint32>(plugin->supportedBoardTypes()))},
                     {QStringLiteral("identifier"), hexadecimal(plugin->pluginID())}});
    }
    const QString name = record.info.get(QStringLiteral("Name")).toString();
    if (!name.isEmpty())
        sendMessage({{QStringLiteral("name"), name}});
    const QString verdict = PluginLoader::verdictName(record.verdict);
    sendMessage(
        verdictParts(verdict, isAccepted ? verdict : QLatin1String("refused: ") + record.reason));

    if (profiled && isAccepted) {
        sendActivity("it was started");
        sendMessage(timeOf(QStringLiteral("start_ms"), [plugin] { plugin->start(); }));
        sendActivity("it was stopped");
        sendMessage(timeOf(QStringLiteral("stop_ms"), [plugin] { plugin->stop(); }));
    }
    sendActivity("it was unloaded");
    loader.unload();
}

} // namespace

int inspectPlugin(const QStringList& arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Examines one plug-in file, for \"plugins\", and prints what that needs."));
    SessionOptions options(parser);
    const QCommandLineOption file(QStringLiteral("file"), QStringLiteral("The file."),
                                  QStringLiteral("FILE"));
    const QCommandLineOption profile(QStringLiteral("profile"),
                                     QStringLiteral("Start and stop the plug-in, too."));
    parser.addOptions({file, profile});
    if (const std::optional<int> status = options.parse(parser, arguments))
        return *status;
    if (!takeStandardOutput())
        return fail(Failure, QStringLiteral("standard output cannot be kept"));

    prepareForTheWorst();
    options.startLibrary();
    examine(parser.value(file), parser.isSet(profile));
    sendActivity(InspectionProtocol::lastActivity);
    App::Application::destruct();
    return Success;
}

} // namespace Host
