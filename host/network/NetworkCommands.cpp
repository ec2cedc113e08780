#include "network/NetworkCommands.h"

#include "CommandLine.h"
#include "network/ProcessEndWatcher.h"
#include "process/InterruptWatcher.h"
#include "process/Output.h"

#include <app/Application.h>
#include <netdiag/PingProcess.h>
#include <netdiag/SystemTools.h>
#include <netdiag/TracerouteProcess.h>
#include <ovcore/Settings.h>
#include <system/ProcessInterrupt.h>

#include <QCommandLineParser>
#include <QEventLoop>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTimer>

#include <algorithm>
#include <cstdio>

namespace Host {

namespace {

/// Reads the one host and the one number that both commands take, or returns the status to end
/// with. `number` holds the default before and is at least `least` after.
std::optional<int> read(const QStringList& arguments, const QString& description,
                        const QCommandLineOption& option, int least, QString& host, int& number)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(description);
    parser.addPositionalArgument(QStringLiteral("HOST"), QStringLiteral("A name or an address."));
    parser.addOption(option);
    if (const std::optional<int> status = parse(parser, arguments))
        return status;

    const QStringList hosts = parser.positionalArguments();
    if (hosts.size() != 1)
        return fail(UsageError, QStringLiteral("one host is wanted, not %1").arg(hosts.size()));
    host = hosts.first();
    // A tool would take such a host for an option, for nothing, or for two.
    if (host.isEmpty() || host.startsWith(QLatin1Char('-')) || host.startsWith(QLatin1Char('/')) ||
        std::any_of(host.cbegin(), host.cend(), [](QChar character) {
            return character.isSpace() || character.category() == QChar::Other_Control;
        })) {
        return fail(UsageError, QStringLiteral("%1 is no host").arg(quoted(host)));
    }

    if (parser.isSet(option)) {
        bool isNumber = false;
        number = parser.value(option).toInt(&isNumber);
        if (!isNumber || number < least) {
            return fail(UsageError,
                        QStringLiteral("--%1: %2 is no whole number from %3 up")
                            .arg(option.names().constFirst(), quoted(parser.value(option)))
                            .arg(least));
        }
    }
    return std::nullopt;
}

/// Prints a part of a tool's report; false when nobody takes it any more.
bool printReport(QByteArray text)
{
    // On Windows the tools end their lines as the standard output does by itself.
    return write(stdout, text.replace('\r', QByteArray()));
}

/// `name` is what the tool is called, `program` what is launched; `error` is empty if unknown.
int failToLaunch(const QString& name, const QString& program, const QString& package,
                 const QString& error = QString())
{
    const QString message = QStringLiteral("the system's %1 tool cannot be launched").arg(name);
    if (QStandardPaths::findExecutable(program).isEmpty())
        return fail(Failure,
                    QStringLiteral("%1; on Debian the package %2 brings it").arg(message, package));
    return fail(Failure, error.isEmpty() ? message : message + QLatin1String(": ") + error);
}

int runPing(const QString& host, int count)
{
    PingProcess process;
    QEventLoop loop;
    bool launched = true;
    QByteArray errorOutput;
    QObject::connect(&process, &QProcess::readyReadStandardOutput, &loop, [&] {
        if (!printReport(process.readAllStandardOutput()))
            System::interruptProcess(process.processId());
    });
    QObject::connect(&process, &QProcess::readyReadStandardError, &loop,
                     [&] { errorOutput += process.readAllStandardError(); });
    QObject::connect(&process, &QProcess::errorOccurred, &loop, [&](QProcess::ProcessError error) {
        launched = launched && error != QProcess::FailedToStart;
        if (!launched)
            loop.quit();
    });
    QObject::connect(&process, qOverload<int, QProcess::ExitStatus>(&QProcess::finished), &loop,
                     &QEventLoop::quit);
    // The tool prints its summary at the first interrupt; at the next one it has had its chance.
    const InterruptWatcher watcher([&process, interrupted = false]() mutable {
        if (interrupted)
            process.kill();
        else
            System::interruptProcess(process.processId());
        interrupted = true;
    });

    process.setCount(count);
    process.doPing(host);
    if (launched)
        loop.exec();
    if (!launched)
        return failToLaunch(QStringLiteral("ping"), QLatin1String(SystemTools::ping),
                            QStringLiteral("iputils-ping"), process.errorString());
    if (process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0)
        return Success;
    if (process.exitStatus() == QProcess::CrashExit)
        return fail(Failure, QStringLiteral("the ping tool was ended before it was done"));
    errorOutput = errorOutput.trimmed();
    return fail(Failure, errorOutput.isEmpty()
                             ? QStringLiteral("%1 did not answer").arg(quoted(host))
                             : QString::fromLocal8Bit(errorOutput));
}

int runTrace(const QString& host, int maxHops)
{
    TracerouteProcess process;
    QEventLoop loop;
    QByteArray report;
    const auto printNews = [&] {
        const auto printed = report.size();
        report = process.readAllStandardOutput();
        return printReport(report.mid(printed));
    };
    // The tool is no child of this process, so the keyboard's interrupt does not reach it. What it
    // has yet to say comes at once or, where it cannot be interrupted, not at all.
    const auto endTool = [&] {
        System::interruptProcess(process.toolProcessId());
        QTimer::singleShot(500, &loop, &QEventLoop::quit);
    };
    QObject::connect(&process, &TracerouteProcess::readyReadStandardOutput, &loop, [&] {
        if (!printNews())
            endTool();
    });
    bool interrupted = false;
    const InterruptWatcher interruptWatcher([&] {
        interrupted = true;
        endTool();
    });

    process.setMaxHops(maxHops);
    process.doTraceroute(host);
    if (process.toolProcessId() == 0)
        return failToLaunch(QStringLiteral("trace-route"), QLatin1String(SystemTools::traceroute),
                            QStringLiteral("traceroute"));
    const ProcessEndWatcher endWatcher(process.toolProcessId(), [&loop] { loop.quit(); });
    if (!endWatcher.isWatching())
        QObject::connect(&process, &TracerouteProcess::finished, &loop, &QEventLoop::quit);
    loop.exec();
    // The file's watcher may be behind the tool's end.
    printNews();
    if (std::ferror(stdout))
        return Success; // as far as the tool is concerned
    if (interrupted)
        return fail(Failure, QStringLiteral("interrupted"));
    const QRegularExpression hop(QStringLiteral("^ +[0-9]+ "), QRegularExpression::MultilineOption);
    if (!hop.match(QString::fromLocal8Bit(report)).hasMatch())
        return fail(Failure, QStringLiteral("no hop to %1 has been found").arg(quoted(host)));
    return Success;
}

/// Does one job with the library up, keeping nothing.
template <typename Job>
int withLibrary(Job job)
{
    const QTemporaryDir directory;
    if (!directory.isValid()) {
        return fail(
            Failure,
            QStringLiteral("no temporary directory can be made: %1").arg(directory.errorString()));
    }
    Core::Settings::instance().setApplicationDirPath(directory.path());
    App::Application::init();
    const int status = job();
    App::Application::destruct();
    return status;
}

} // namespace

int ping(const QStringList& arguments)
{
    const QCommandLineOption option(QStringLiteral("count"),
                                    QStringLiteral("How many requests to send; 4 by default, 0 for "
                                                   "no limit. On Windows the tool decides."),
                                    QStringLiteral("N"));
    QString host;
    int count = 4;
    if (const std::optional<int> status =
            read(arguments, QStringLiteral("Sees whether a host answers."), option, 0, host, count))
        return *status;
    return withLibrary([&] { return runPing(host, count); });
}

int trace(const QStringList& arguments)
{
    const QCommandLineOption option(QStringLiteral("max-hops"),
                                    QStringLiteral("How many hops to go at most; 10 by default."),
                                    QStringLiteral("N"));
    QString host;
    int maxHops = 10;
    if (const std::optional<int> status = read(
            arguments, QStringLiteral("Traces the route to a host."), option, 1, host, maxHops))
        return *status;
    return withLibrary([&] { return runTrace(host, maxHops); });
}

} // namespace Host
