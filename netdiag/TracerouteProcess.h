#pragma once

#include <ovapp_export.h>

#include <QByteArray>
#include <QObject>
#include <QString>
#include <QTimer>

class QFileSystemWatcher;

/// Runs the system's trace-route tool against one host and follows its report. The tool is a
/// process of its own, which writes the report, complaints included, into the file
/// `traceroute.out` of the application directory; nothing here stops it, not even the end of the
/// object, which leaves the file in place too.
///
///     TracerouteProcess trace;
///     QObject::connect(&trace, &TracerouteProcess::readyReadStandardOutput, &trace,
///                      [&trace] { show(trace.readAllStandardOutput()); });
///     trace.doTraceroute(QStringLiteral("192.168.0.1"));
///
/// No signal reports an error: without the tool, or where the file cannot be written, a run is
/// `started` and `finished` with an empty report; `toolProcessId` tells that no tool was launched.
///
/// Objects that live at the same time share the file where they share the application directory. An
/// object belongs to the thread that made it and needs that thread's event loop.
class OVAPP_EXPORT TracerouteProcess : public QObject
{
    Q_OBJECT

public:
    /// Creates or empties the report in what is the application directory now; a later change of
    /// the directory does not matter to the object.
    explicit TracerouteProcess(QObject* parent = nullptr);
    ~TracerouteProcess() override;

    /// How many hops the next run may go, 10 by default; it goes to the tool unchecked.
    void setMaxHops(int maxHops);
    /// The size of a request in bytes, 64 by default. No run uses it: requests have the tool's
    /// own size.
    void setPackageSize(int packageSize);

    /// Empties the report and launches the tool for `host`, which it is given unchanged; returns
    /// at once. It may be called during a run: a tool that is still at work goes on, and what it
    /// has yet to say ends up in the new report.
    void doTraceroute(const QString& host);

    /// The process ID of the tool that the last run launched, which may have ended meanwhile; 0
    /// before the first run and when the tool could not be launched.
    qint64 toolProcessId() const;

    /// The whole report so far, from its first byte; empty when the file cannot be read.
    QByteArray readAllStandardOutput() const;

Q_SIGNALS:
    /// The report has changed.
    void readyReadStandardOutput();
    /// The tool has been launched; emitted before `doTraceroute` returns.
    void started();
    /// The report has stayed the same for seven seconds, whether the tool has ended or not.
    void finished();

protected Q_SLOTS:
    /// What the watcher calls when the report changes.
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
