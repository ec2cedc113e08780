#include "CommandLine.h"
#include "Commands.h"
#include "Interrupts.h"
#include "Output.h"

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

#ifdef Q_OS_WIN
#include <qt_windows.h>
#else
#include <QFile>

#include <cerrno>
#include <csignal>
#endif

namespace Host {

namespace {

/// Prints a part of a tool's output.
void printOutput(QByteArray text)
{
    // On Windows standard output converts the line ends itself.
    write(stdout, text.replace('\r', QByteArray()));
}

/// Returns whether the tool is to be ended: after an interrupt, or if its output cannot be printed.
bool isEndRequested()
{
    return isInterrupted() || std::ferror(stdout);
}

/// Reports that the tool `name` cannot be started. `program` is its executable, `package` the
/// Debian package that contains it; `error` is empty if the reason is unknown.
int reportStartFailure(const QString& name, const QString& program, const QString& package,
                       const QString& error = QString())
{
    const QString message = QStringLiteral("cannot start the system's %1 tool").arg(name);
    if (QStandardPaths::findExecutable(program).isEmpty())
        return fail(Failure, QStringLiteral("%1; on Debian, install %2").arg(message, package));
    return fail(Failure, error.isEmpty() ? message : message + QLatin1String(": ") + error);
}

/// Returns whether a process, which need not be a child of this one, is running.
bool isRunning(qint64 pid)
{
#ifdef Q_OS_WIN
    const HANDLE process = OpenProcess(SYNCHRONIZE, FALSE, static_cast<DWORD>(pid));
    const bool isRunning = process && WaitForSingleObject(process, 0) == WAIT_TIMEOUT;
    CloseHandle(process);
    return isRunning;
#else
    if (::kill(static_cast<pid_t>(pid), 0) != 0 && errno == ESRCH)
        return false;
    // In containers, nothing may collect processes that have ended. Their command line is empty.
    QFile commandLine(QStringLiteral("/proc/%1/cmdline").arg(pid));
    return !commandLine.open(QIODevice::ReadOnly) || !commandLine.readAll().isEmpty();
#endif
}

int runPing(const QString& host, int count)
{
    PingProcess process;
    QEventLoop loop;
    QByteArray errorOutput;
    QObject::connect(&process, &QProcess::readyReadStandardOutput, &loop,
                     [&] { printOutput(process.readAllStandardOutput()); });
    QObject::connect(&process, &QProcess::readyReadStandardError, &loop,
                     [&] { errorOutput += process.readAllStandardError(); });
    QObject::connect(&process, &QProcess::stateChanged, &loop, [&](QProcess::ProcessState state) {
        if (state == QProcess::NotRunning)
            loop.quit();
    });
    // The tool prints its summary. Ctrl+C has reached it too, but other signals have not.
    QTimer endTimer;
    QObject::connect(&endTimer, &QTimer::timeout, &loop, [&] {
        if (!isEndRequested())
            return;
        System::interruptProcess(process.processId());
        endTimer.stop();
    });
    endTimer.start(interruptPollInterval);
    catchInterrupts();

    process.setCount(count);
    process.doPing(host);
    if (process.state() != QProcess::NotRunning)
        loop.exec();
    if (process.error() == QProcess::FailedToStart)
        return reportStartFailure(QStringLiteral("ping"), QLatin1String(SystemTools::ping),
                                  QStringLiteral("iputils-ping"), process.errorString());
    if (std::ferror(stdout))
        return Success; // main() reports the error
    if (process.exitStatus() == QProcess::CrashExit)
        return fail(Failure, QStringLiteral("the ping tool was terminated"));
    if (process.exitCode() == 0)
        return Success;
    if (isInterrupted())
        return fail(Failure, QStringLiteral("interrupted"));
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
    const auto printNewOutput = [&] {
        const auto printed = report.size();
        report = process.readAllStandardOutput();
        printOutput(report.mid(printed));
    };
    QObject::connect(&process, &TracerouteProcess::readyReadStandardOutput, &loop, printNewOutput);
    QTimer endTimer;
    QObject::connect(&endTimer, &QTimer::timeout, &loop, [&] {
        if (!isRunning(process.toolProcessId()))
            loop.quit();
        if (!isEndRequested())
            return;
        // The tool is not a child of this process, so Ctrl+C does not reach it. A tool that can be
        // interrupted prints the rest of its output at once.
        System::interruptProcess(process.toolProcessId());
        endTimer.stop();
        QTimer::singleShot(500, &loop, &QEventLoop::quit);
    });
    catchInterrupts();

    process.setMaxHops(maxHops);
    process.doTraceroute(host);
    if (process.toolProcessId() == 0)
        return reportStartFailure(QStringLiteral("traceroute"),
                                  QLatin1String(SystemTools::traceroute),
                                  QStringLiteral("traceroute"));
    endTimer.start(interruptPollInterval);
    loop.exec();
    // The last change of the file may not have been notified yet.
    printNewOutput();
    if (std::ferror(stdout))
        return Success; // main() reports the error
    if (isInterrupted())
        return fail(Failure, QStringLiteral("interrupted"));
    const QRegularExpression hop(QStringLiteral("^ +[0-9]+ "), QRegularExpression::MultilineOption);
    if (!hop.match(QString::fromLocal8Bit(report)).hasMatch())
        return fail(Failure, QStringLiteral("no hop to %1 was found").arg(quoted(host)));
    return Success;
}

/// Executes a command that takes a host and the number of `option`, which is at least `least`:
/// calls `runTool` with them while the library is initialised. Its files are temporary.
int runWithHost(const QStringList& arguments, const QString& description,
                const QCommandLineOption& option, int least,
                int (*runTool)(const QString& host, int number))
{
    QCommandLineParser parser;
    parser.setApplicationDescription(description);
    parser.addPositionalArgument(QStringLiteral("HOST"), QStringLiteral("A name or an address."));
    parser.addOption(option);
    if (const std::optional<int> exitCode = parse(parser, arguments))
        return *exitCode;

    const QStringList hosts = parser.positionalArguments();
    if (hosts.size() != 1)
        return fail(UsageError, QStringLiteral("expected one host, got %1").arg(hosts.size()));
    const QString& host = hosts.first();
    // The tool would read such a host as an option, as no host, or as two hosts.
    if (host.isEmpty() || host.startsWith(QLatin1Char('-')) || host.startsWith(QLatin1Char('/')) ||
        std::any_of(host.cbegin(), host.cend(), [](QChar character) {
            return character.isSpace() || character.category() == QChar::Other_Control;
        })) {
        return fail(UsageError,
                    QStringLiteral("%1 is not a host name or address").arg(quoted(host)));
    }
    bool isNumber = false;
    const int number = parser.value(option).toInt(&isNumber);
    if (!isNumber || number < least) {
        return fail(UsageError, QStringLiteral("--%1: %2 is not an integer of at least %3")
                                    .arg(option.names().constFirst(), quoted(parser.value(option)))
                                    .arg(least));
    }

    const QTemporaryDir directory;
    if (!directory.isValid()) {
        return fail(
            Failure,
            QStringLiteral("cannot create a temporary directory: %1").arg(directory.errorString()));
    }
    Core::Settings::instance().setApplicationDirPath(directory.path());
    App::Application::init();
    const int exitCode = runTool(host, number);
    App::Application::destruct();
    return exitCode;
}

} // namespace

int ping(const QStringList& arguments)
{
    return runWithHost(arguments, QStringLiteral("Sends echo requests to a host."),
                       {QStringLiteral("count"),
                        QStringLiteral("The number of requests; 4 by default, 0 for no limit. "
                                       "Ignored on Windows."),
                        QStringLiteral("N"), QStringLiteral("4")},
                       0, runPing);
}

int trace(const QStringList& arguments)
{
    return runWithHost(arguments, QStringLiteral("Traces the route to a host."),
                       {QStringLiteral("max-hops"),
                        QStringLiteral("The maximum number of hops; 10 by default."),
                        QStringLiteral("N"), QStringLiteral("10")},
                       1, runTrace);
}

} // namespace Host
