#include "inspection/PluginInspector.h"

#include "inspection/InspectPluginCommand.h"
#include "process/FatalSignals.h"
#include "process/Output.h"

#include <system/LibraryFile.h>

#include <QCoreApplication>
#include <QJsonDocument>
#include <QProcess>
#include <QTimer>

#ifdef Q_OS_WIN
#include <qt_windows.h>
#endif

namespace Host {

namespace {

/// If the system refuses a process, Qt 5 stores the identifier -1 in an object of class `QProcess`,
/// and `kill` then ends every process of the user. For a derived class Qt uses another system call,
/// and reports `FailedToStart`.
class InspectionProcess final : public QProcess
{
public:
    using QProcess::QProcess;
};

/// Has the system end what this process starts when this process ends. On Linux a process asks for
/// that itself.
void killChildrenOnExit()
{
#ifdef Q_OS_WIN
    static const HANDLE job = [] {
        JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits = {};
        limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
        const HANDLE newJob = CreateJobObjectW(nullptr, nullptr);
        SetInformationJobObject(newJob, JobObjectExtendedLimitInformation, &limits, sizeof limits);
        AssignProcessToJobObject(newJob, GetCurrentProcess());
        return newJob;
    }();
    Q_UNUSED(job)
#endif
}

/// What ended a process that has not ended by itself, in words that follow "ended by".
QString endingOf(const QProcess& process)
{
#ifdef Q_OS_WIN
    return QStringLiteral("exception 0x%1").arg(static_cast<quint32>(process.exitCode()), 0, 16);
#else
    for (const FatalSignal* crash = fatalSignals; crash->name; ++crash) {
        if (crash->number == process.exitCode())
            return QLatin1String(crash->name);
    }
    return QStringLiteral("signal %1").arg(process.exitCode());
#endif
}

/// Adds to the report what the process has told, and how it ended.
void conclude(PluginReport& report, QProcess& process, bool isTimeUp, std::chrono::seconds timeout)
{
    const QString activity = QLatin1String(InspectionProtocol::activity);
    const QString ending = QLatin1String(InspectionProtocol::terminationReason);
    report.add({{activity, QStringLiteral("the library was started")}});
    const QList<QByteArray> lines = process.readAllStandardOutput().split('\n');
    for (const QByteArray& line : lines)
        report.add(QJsonDocument::fromJson(line).object());
    const QString lastActivity = report.take(activity);
    QString endedBy = report.take(ending);
    const auto addVerdict = [&](const char* word, const QString& what) {
        report.add(verdictParts(QLatin1String(word),
                                QStringLiteral("broken: %1 while %2").arg(what, lastActivity)));
    };

    const bool hasCrashed = process.exitStatus() == QProcess::CrashExit;
    if (hasCrashed && isTimeUp)
        return addVerdict(
            "timed-out",
            QStringLiteral("took longer than %1 s, and was ended").arg(timeout.count()));
    if (hasCrashed && endedBy.isEmpty())
        endedBy = endingOf(process);
    if (!endedBy.isEmpty())
        return addVerdict("crashed", QStringLiteral("ended by %1").arg(endedBy));
    if (process.exitCode() != Success ||
        lastActivity != QLatin1String(InspectionProtocol::lastActivity)) {
        addVerdict(
            "exited",
            QStringLiteral("ended by a call of exit, with status %1,").arg(process.exitCode()));
    }
}

} // namespace

PluginInspector::PluginInspector(const QStringList& arguments, int maxProcesses,
                                 std::chrono::seconds timeout)
    : _arguments(arguments), _maxProcesses(maxProcesses), _timeout(timeout)
{
}

std::vector<PluginReport> PluginInspector::examine(const QStringList& files)
{
    killChildrenOnExit();
    std::vector<PluginReport> reports(files.cbegin(), files.cend());
    for (PluginReport& report : reports) {
        const QString problem = System::libraryFileError(report.text(QStringLiteral("file")));
        if (problem.isEmpty())
            _waiting.push_back(&report);
        else
            report.add(
                verdictParts(QStringLiteral("no-plugin"), QLatin1String("refused: ") + problem));
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
    // A coarse timer may be a twentieth early.
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
                         conclude(*report, *process, !timer->isActive(), _timeout);
                         end(process);
                     });
    process->setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process->setStandardInputFile(QProcess::nullDevice());
    timer->start(_timeout);
    process->start(QCoreApplication::applicationFilePath(),
                   _arguments +
                       QStringList{QStringLiteral("--file"), report->text(QStringLiteral("file"))});
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
