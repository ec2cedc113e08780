#pragma once

#include "inspection/PluginReport.h"

#include <QEventLoop>
#include <QStringList>

#include <chrono>
#include <deque>
#include <vector>

class QProcess;

namespace Host {

/// Examines plug-in files, each in a process of its own that runs `inspectPlugin`, so that none
/// spoils what is said of the others. A file that cannot be loaded, as its tables show, needs no
/// process. The processes end when this one does.
class PluginInspector
{
public:
    /// `arguments` are those of `inspectPlugin` without the file. Up to `maxProcesses` processes
    /// run at a time; each is ended after `timeout`.
    PluginInspector(const QStringList& arguments, int maxProcesses, std::chrono::seconds timeout);

    /// The reports on the files, in their order.
    std::vector<PluginReport> examine(const QStringList& files);
    /// Why not all files have been examined; empty if they have.
    QString error() const { return _error; }

private:
    void startNext();
    void end(QProcess* process);

    const QStringList _arguments;
    const int _maxProcesses;
    const std::chrono::seconds _timeout;
    /// What there is still to do.
    std::deque<PluginReport*> _waiting;
    int _running = 0;
    QEventLoop _loop;
    QString _error;
};

} // namespace Host
