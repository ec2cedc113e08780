#include "inspection/PluginInspector.h"

#include "inspection/InspectPluginCommand.h"
#include "Output.h"

#include <system/LibraryFile.h>

#include <QCoreApplication>
#include <QJsonDocument>
#include <QProcess>
#include <QProcessEnvironment>
#include <QTimer>

#include <cstring>

namespace Host {

namespace {

/// If the system cannot start a process, Qt 5 stores the identifier -1 in an object of class
/// `QProcess`, and `kill` then ends all processes of the user. For a derived class Qt uses another
/// system call and reports `FailedToStart`.
class InspectionProcess final : public QProcess
{
public:
    using QProcess::QProcess;
};

/// Returns an environment in which the C library overwrites freed memory, so that a process which
/// uses it crashes. The C library does not overwrite memory in the caches of its threads.
QProcessEnvironment inspectionEnvironment()
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
#ifdef Q_OS_LINUX
    environment.insert(QStringLiteral("MALLOC_PERTURB_"), QStringLiteral("165"));
    const QString tunables = QStringLiteral("GLIBC_TUNABLES");
    environment.insert(tunables,
                       environment.value(tunables) + QLatin1String(":glibc.malloc.tcache_count=0"));
#endif
    return environment;
}

/// Returns the signal or the exception of the system that ended a process.
QString terminationReasonOf(const QProcess& process)
{
#ifdef Q_OS_WIN
    return QStringLiteral("exception 0x%1").arg(static_cast<quint32>(process.exitCode()), 0, 16);
#else
#if defined(__GLIBC__) && (__GLIBC__ > 2 || __GLIBC_MINOR__ >= 32)
    if (const char* name = ::sigabbrev_np(process.exitCode()))
        return QLatin1String("SIG") + QLatin1String(name);
#endif
    return QStringLiteral("signal %1").arg(process.exitCode());
#endif
}

/// Adds the messages of a process that has ended to the report, and a verdict if it failed.
void addResult(PluginReport& report, QProcess& process, bool isTimedOut,
               std::chrono::seconds timeout)
{
    const QString activity = QLatin1String(InspectionProtocol::activity);
    report.add({{activity, QStringLiteral("the program was started")}});
    const QList<QByteArray> lines = process.readAllStandardOutput().split('\n');
    for (const QByteArray& line : lines)
        report.add(QJsonDocument::fromJson(line).object());
    const QString lastActivity = report.take(activity);
    const auto addVerdict = [&](const char* verdict, const QString& failure) {
        report.add(verdictParts(QLatin1String(verdict),
                                QStringLiteral("%1 while %2").arg(failure, lastActivity)));
    };

    const bool hasCrashed = process.exitStatus() == QProcess::CrashExit;
    if (hasCrashed && isTimedOut) {
        addVerdict("timed-out",
                   QStringLiteral("took longer than %1 s, and was ended").arg(timeout.count()));
    } else if (hasCrashed) {
        addVerdict("crashed", QStringLiteral("ended by %1").arg(terminationReasonOf(process)));
    } else if (process.exitCode() != Success ||
               lastActivity != QLatin1String(InspectionProtocol::lastActivity)) {
        addVerdict(
            "exited",
            QStringLiteral("ended by a call of exit with exit code %1").arg(process.exitCode()));
    }
}

} // namespace

PluginInspector::PluginInspector(const QStringList& arguments, int maxProcesses,
                                 std::chrono::seconds timeout)
    : _arguments(arguments), _maxProcesses(maxProcesses), _timeout(timeout)
{
}

std::vector<PluginReport> PluginInspector::inspect(const QStringList& files)
{
    std::vector<PluginReport> reports(files.cbegin(), files.cend());
    for (PluginReport& report : reports) {
        const QString reason = System::libraryFileError(report.text(QStringLiteral("file")));
        if (reason.isEmpty())
            _waiting.push_back(&report);
        else
            report.add(verdictParts(QStringLiteral("no-plugin"), reason));
    }
    while (!_waiting.empty() && _running < _maxProcesses)
        startNext();
    if (_running > 0)
        _loop.exec();
    return reports;
}

void PluginInspector::startNext()
{
    PluginReport* const report = _waiting.front();
    _waiting.pop_front();
    ++_running;
    auto* process = new InspectionProcess(&_loop);
    auto* timer = new QTimer(process);
    timer->setSingleShot(true);
    // A coarse timer may be 5 % early.
    timer->setTimerType(Qt::PreciseTimer);
    QObject::connect(timer, &QTimer::timeout, process, &QProcess::kill);
    QObject::connect(process, &QProcess::errorOccurred, process, [this, process](auto error) {
        if (error != QProcess::FailedToStart)
            return;
        _error = process->errorString();
        _waiting.clear();
        end(process);
    });
    QObject::connect(process, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished),
                     process, [this, process, timer, report] {
                         addResult(*report, *process, !timer->isActive(), _timeout);
                         end(process);
                     });
    process->setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process->setStandardInputFile(QProcess::nullDevice());
    timer->start(_timeout);
    process->setProcessEnvironment(inspectionEnvironment());
    process->start(QCoreApplication::applicationFilePath(),
                   _arguments + QStringList(report->text(QStringLiteral("file"))));
}

void PluginInspector::end(QProcess* process)
{
    process->deleteLater();
    --_running;
    if (!_waiting.empty())
        startNext();
    if (_running == 0)
        _loop.quit();
}

} // namespace Host
