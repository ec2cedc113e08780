#pragma once

#include <ovapp_export.h>

#include <QProcess>
#include <QTimer>

/// Runs the system's ping tool for one host. The base class provides the output and the signals:
///
///     PingProcess ping;
///     QObject::connect(&ping, &QProcess::readyReadStandardOutput, &ping,
///                      [&ping] { show(ping.readAllStandardOutput()); });
///     ping.doPing(QStringLiteral("192.168.0.1"));
///
/// If the tool cannot be started, `errorOccurred` is emitted; if the host does not answer, only the
/// output and the exit code show it. An object can be used for several runs, one after the other;
/// its destructor ends a run in progress. It belongs to the thread that created it and needs the
/// event loop of that thread.
class OVAPP_EXPORT PingProcess : public QProcess
{
    Q_OBJECT

public:
    /// Creates an object without starting the tool.
    explicit PingProcess(QObject* parent = nullptr);
    ~PingProcess() override;

    /// Sets the number of requests of the next run, one per second: 4 by default, no limit if it is
    /// 0 or less. Ignored on Windows, where the tool sends its own number of requests.
    ///
    /// The number is not passed to the tool. Instead, the tool is interrupted half a second after
    /// the last request, and prints its summary. The time starts with the first output, after the
    /// tool has looked up the host name. Without any output, the tool is interrupted 30 seconds
    /// later.
    void setCount(int count);
    /// Sets the size of a request in bytes, 64 by default. It is not used: requests have the
    /// tool's own size.
    void setPackageSize(int packageSize);

    /// Starts the tool with `host`, unchanged, as its only argument, and returns at once. During a
    /// run it does nothing, and the base class prints a warning. Check a text that a user entered
    /// first: the tool reads a host that begins with a hyphen as an option.
    void doPing(const QString& host);

private:
    void limitRun();

    int _count;
    int _packageSize;
    /// The duration of the run from the first output of the tool, in milliseconds; 0 after that
    /// output, and if there is no limit.
    int _limitFromOutput;
    QTimer _limitTimer;
};
