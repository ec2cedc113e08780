#include "inspection/InspectPluginCommand.h"

#include "CommandLine.h"
#include "inspection/PluginReport.h"
#include "process/FatalSignals.h"
#include "process/Output.h"
#include "SessionOptions.h"

#include <app/Application.h>
#include <ovcore/BoardEthDescHandler.h>
#include <plugins/PluginInterface.h>
#include <plugins/PluginLoader.h>

#include <QCommandLineParser>
#include <QElapsedTimer>
#include <QFile>
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
    std::set_terminate([] {
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

/// The major version of the Qt that a library was built with instead of this program's; 0 if it was
/// not, as far as the names of the libraries tell that it wants loaded.
int otherQtOf(const QString& file)
{
    QFile library(file);
    if (!library.open(QIODevice::ReadOnly))
        return 0;
    const QByteArray content = library.readAll();
    const auto wants = [&content](int qt) {
        return content.contains("Qt" + QByteArray::number(qt) + "Core");
    };
    if (wants(QT_VERSION_MAJOR))
        return 0;
    for (const int qt : {5, 6, 7}) {
        if (wants(qt))
            return qt;
    }
    return 0;
}

/// Qt's own words, where they help.
QString loadError(const QPluginLoader& loader)
{
    if (const int qt = otherQtOf(loader.fileName())) {
        return QStringLiteral("it is built with Qt %1, and this program with Qt %2")
            .arg(qt)
            .arg(QT_VERSION_MAJOR);
    }
    return loader.metaData().isEmpty()
               ? loader.errorString() + QStringLiteral("; is Q_PLUGIN_METADATA in its class?")
               : loader.errorString();
}

QJsonObject partsOf(Verdict verdict, const QString& boards, const QPluginLoader& loader)
{
    switch (verdict) {
    case Verdict::Accepted:
        break;
    case Verdict::NoPlugin:
        return verdictParts(
            QStringLiteral("no-plugin"),
            QStringLiteral("refused: Qt cannot load it as a plug-in: %1").arg(loadError(loader)));
    case Verdict::NoInterface:
        return verdictParts(
            QStringLiteral("no-interface"),
            QStringLiteral("refused: its root object does not answer to \"%1\"; name "
                           "App::PluginInterface in its Q_INTERFACES")
                .arg(QLatin1String(qobject_interface_iid<App::PluginInterface*>())));
    case Verdict::OtherBoard:
        return verdictParts(
            QStringLiteral("other-board"),
            QStringLiteral("refused: supportedBoardTypes() is %1, which has no bit in common "
                           "with the type of the board in use, %2")
                .arg(boards,
                     hexadecimal(static_cast<quint32>(
                         Core::BoardEthDescHandler::instance()->currentBoardEthDescType()))));
    case Verdict::NoIdentifier:
        return verdictParts(
            QStringLiteral("no-identifier"),
            QStringLiteral("refused: pluginID() is 0; give the plug-in an identifier"));
    }
    return verdictParts(QStringLiteral("accepted"), QStringLiteral("accepted"));
}

void examine(const QString& file, bool profiled)
{
    QPluginLoader loader;
    QObject* object = nullptr;
    sendActivity("it was loaded");
    sendMessage(timeOf(QStringLiteral("load_ms"), [&file, &loader, &object] {
        object = PluginLoader::rootObjectOf(file, loader);
    }));

    sendActivity("it was asked what it is");
    const Verdict verdict = PluginLoader::verdictOn(object);
    auto* plugin = qobject_cast<App::PluginInterface*>(object);
    QString boards;
    if (plugin) {
        boards = hexadecimal(static_cast<quint32>(plugin->supportedBoardTypes()));
        sendMessage({{QStringLiteral("boards"), boards},
                     {QStringLiteral("identifier"), hexadecimal(plugin->pluginID())}});
    }
    if (verdict == Verdict::Accepted) {
        const QString name = plugin->pluginInfo().get(QStringLiteral("Name")).toString();
        if (!name.isEmpty())
            sendMessage({{QStringLiteral("name"), name}});
    }
    sendMessage(partsOf(verdict, boards, loader));

    if (profiled && verdict == Verdict::Accepted) {
        sendActivity("it was started");
        sendMessage(timeOf(QStringLiteral("start_ms"), [plugin] { plugin->start(); }));
        sendActivity("it was stopped");
        sendMessage(
            timeOf(QStringLiteral("stop_ms"), [object] { PluginLoader::unloadPlugin(object); }));
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
