#pragma once

#include <ovapp_export.h>

#include <QByteArray>
#include <QObject>
#include <QString>
#include <QTimer>

class QFileSystemWatcher;

/// Runs the system's traceroute tool for one host and follows its report. The tool is a detached
/// process that writes the report, including error messages, to the file `traceroute.out` in the
/// application directory. The object never stops the tool; its destructor leaves both the tool and
/// the file.
///
///     TracerouteProcess trace;
///     QObject::connect(&trace, &TracerouteProcess::readyReadStandardOutput, &trace,
///                      [&trace] { show(trace.readAllStandardOutput()); });
///     trace.doTraceroute(QStringLiteral("192.168.0.1"));
///
/// No signal reports an error: if the tool cannot be started or the file cannot be written,
/// `started` and `finished` are emitted and the report is empty. `toolProcessId` is 0 if the tool
/// was not started.
///
/// Objects with the same application directory share the file. An object belongs to the thread that
/// created it and needs the event loop of that thread.
class OVAPP_EXPORT TracerouteProcess : public QObject
{
    Q_OBJECT

public:
    /// Creates or empties the report in the current application directory. A later change of the
    /// application directory does not affect the object.
    explicit TracerouteProcess(QObject* parent = nullptr);
    ~TracerouteProcess() override;

    /// Sets the maximum number of hops of the next run, 10 by default. It is passed to the tool
    /// unchecked.
    void setMaxHops(int maxHops);
    /// Sets the size of a request in bytes, 64 by default. It is not used: requests have the
    /// tool's own size.
    void setPackageSize(int packageSize);

    /// Empties the report, starts the tool with `host`, unchanged, and returns at once. It may be
    /// called during a run: the earlier tool continues, and appends its output to the new report.
    /// Check a text that a user entered first: the tool reads a host that begins with a hyphen as
    /// an option.
    void doTraceroute(const QString& host);

    /// Returns the process ID of the tool that the last run started, which may have ended; 0 before
    /// the first run and if the tool could not be started.
    qint64 toolProcessId() const;

    /// Returns the whole report so far; empty if the file cannot be read.
    QByteArray readAllStandardOutput() const;

Q_SIGNALS:
    /// Emitted when the report has changed.
    void readyReadStandardOutput();
    /// Emitted when a run begins, before `doTraceroute` returns.
    void started();
    /// Emitted when the report has not changed for seven seconds, even if the tool is running.
    void finished();

protected Q_SLOTS:
    /// Called by the watcher when the report has changed.
    void slotOnChanged();

private:
    void prepare();

    QString _outputFilePath;
    int _maxHops;
    int _packageSize;
    QFileSystemWatcher* _watcher;
    QTimer _quietTimer;
    qint64 _toolProcessId;
};
