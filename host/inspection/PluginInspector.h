#pragma once

#include <QEventLoop>
#include <QJsonObject>
#include <QStringList>

#include <chrono>
#include <deque>
#include <vector>

class QProcess;

namespace Host {

/// The messages that a process which inspects a plug-in sends to its parent. Each one is a JSON
/// object on one line: it contains members of the report, `activity`, or `reason`.
namespace InspectionProtocol {

/// The next activity of the process, as a clause that follows "while".
constexpr char activity[] = "activity";
/// The activity after the inspection.
constexpr char lastActivity[] = "the program ended";
/// The reason for the verdict, as in a plug-in record.
constexpr char reason[] = "reason";

} // namespace InspectionProtocol

/// Inspects plug-in files, each in its own process, which executes `inspectPlugin`, so that a crash
/// affects one file only.
class PluginInspector
{
public:
    /// `arguments` are those of `inspectPlugin` without the file. Up to `maxProcesses` processes
    /// run at the same time; each is killed after `timeout`.
    PluginInspector(const QStringList& arguments, int maxProcesses, std::chrono::seconds timeout);

    /// Returns a report for each file, in the same order: an object of the JSON that
    /// `ovapp-host plugins` prints.
    std::vector<QJsonObject> inspect(const QStringList& files);
    /// Returns the reason if some files were not inspected; empty if all were.
    QString error() const { return _error; }

private:
    void startNext();
    void end(QProcess* process);

    const QStringList _arguments;
    const int _maxProcesses;
    const std::chrono::seconds _timeout;
    /// The reports for which no process has been started yet.
    std::deque<QJsonObject*> _waiting;
    int _running = 0;
    QEventLoop _loop;
    QString _error;
};

} // namespace Host
