#include "inspection/PluginInspector.h"

#include "Output.h"

#include <QCoreApplication>
#include <QJsonDocument>
#include <QProcess>
#include <QTimer>

#include <cstring>

namespace Host {

namespace {

const QString fileMember = QStringLiteral("file");

/// If the system cannot start a process, Qt 5 stores the identifier -1 in an object of class
/// `QProcess`, and `kill` then ends all processes of the user. For a derived class Qt uses another
/// system call and reports `FailedToStart`.
class InspectionProcess final : public QProcess
{
public:
    using QProcess::QProcess;
};

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

/// Completes the report with the messages of a process that has ended and the way in which it
/// ended.
void addResult(QJsonObject& report, QProcess& process, bool isTimedOut,
               std::chrono::seconds timeout)
{
    const QString activityMember = QLatin1String(InspectionProtocol::activity);
    const QString verdictMember = QStringLiteral("verdict");
    report.insert(activityMember, QStringLiteral("the program was started"));
    const QList<QByteArray> lines = process.readAllStandardOutput().split('\n');
    for (const QByteArray& line : lines) {
        const QJsonObject members = QJsonDocument::fromJson(line).object();
        for (auto member = members.begin(); member != members.end(); ++member)
            report.insert(member.key(), member.value());
    }
    const QString activity = report.take(activityMember).toString();
    QString reason = report.take(QLatin1String(InspectionProtocol::reason)).toString();
    const auto setFailure = [&](const char* verdict, const QString& failure) {
        report.insert(verdictMember, QLatin1String(verdict));
        reason = QStringLiteral("%1 while %2").arg(failure, activity);
    };

    const bool hasCrashed = process.exitStatus() == QProcess::CrashExit;
    if (hasCrashed && isTimedOut) {
        setFailure("timed-out",
                   QStringLiteral("took longer than %1 s, and was ended").arg(timeout.count()));
    } else if (hasCrashed) {
        setFailure("crashed", QStringLiteral("ended by %1").arg(terminationReasonOf(process)));
    } else if (process.exitCode() != Success ||
               activity != QLatin1String(InspectionProtocol::lastActivity)) {
        setFailure(
            "exited",
            QStringLiteral("ended by a call of exit with exit code %1").arg(process.exitCode()));
    }
    const QString verdict = report.value(verdictMember).toString();
    report.insert(QStringLiteral("accepted"), verdict == QLatin1String("accepted"));
    report.insert(QStringLiteral("explanation"), verdictText(verdict, reason));
}

} // namespace

PluginInspector::PluginInspector(const QStringList& arguments, int maxProcesses,
                                 std::chrono::seconds timeout)
    : _arguments(arguments), _maxProcesses(maxProcesses), _timeout(timeout)
{
}

std::vector<QJsonObject> PluginInspector::inspect(const QStringList& files)
{
    std::vector<QJsonObject> reports;
    for (const QString& file : files) {
        reports.push_back({{fileMember, file}});
        for (const char* member : {"name", "version", "built_for", "identifier", "boards"})
            reports.back().insert(QLatin1String(member), QJsonValue());
    }
    for (QJsonObject& report : reports)
        _waiting.push_back(&report);
    while (!_waiting.empty() && _running < _maxProcesses)
        startNext();
    if (_running > 0)
        _loop.exec();
    return reports;
}

void PluginInspector::startNext()
{
    QJsonObject* const report = _waiting.front();
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
    process->start(QCoreApplication::applicationFilePath(),
                   _arguments + QStringList(report->value(fileMember).toString()));
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
