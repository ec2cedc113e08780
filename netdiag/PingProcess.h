#pragma once

#include <ovapp_export.h>

#include <QProcess>
#include <QTimer>

/// Runs the system's ping tool against one host. Everything that a run has to tell comes through
/// the base class:
///
///     PingProcess ping;
///     QObject::connect(&ping, &QProcess::readyReadStandardOutput, &ping,
///                      [&ping] { show(ping.readAllStandardOutput()); });
///     ping.doPing(QStringLiteral("192.168.0.1"));
///
/// A tool that cannot be started shows in `errorOccurred`, a host that doesn't answer only in the
/// tool's report and exit code. An object serves one run after the other; destroying it ends the
/// run in progress. It belongs to the thread that made it and needs that thread's event loop.
class OVAPP_EXPORT PingProcess : public QProcess
{
    Q_OBJECT

public:
    /// Starts nothing yet.
    explicit PingProcess(QObject* parent = nullptr);
    ~PingProcess() override;

    /// How many requests a run may send, one a second; 4 by default, no limit when it is 0 or
    /// less. It does not reach the tool's command line: where the tool runs until it is stopped,
    /// the run is interrupted half a second after the last of them, so that the tool still prints
    /// its summary, and where it ends by itself (Windows) the tool's own number holds. The seconds
    /// count from the tool's first output, since it looks up the host's name before; a tool that
    /// prints nothing has half a minute more. The next `doPing` uses it.
    void setCount(int count);
    /// The size of a request in bytes, 64 by default. No run uses it: requests have the tool's
    /// own size.
    void setPackageSize(int packageSize);

    /// Starts the tool with `host`, unchanged, as its only argument, and returns at once. During
    /// a run it does nothing but have the base class print a warning.
    void doPing(const QString& host);

private:
    void limitRun();

    int _count;
    int _packageSize;
    /// How long the run may take from the tool's first output, in milliseconds; 0 from then on,
    /// and when there is no limit.
    int _limitFromOutput;
    QTimer _limitTimer;
};
