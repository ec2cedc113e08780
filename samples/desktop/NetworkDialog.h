#pragma once

#include <netdiag/PingProcess.h>
#include <netdiag/TracerouteProcess.h>

#include <QDialog>

class QLineEdit;
class QPlainTextEdit;

/// Runs the system's network tools and shows their output as it arrives.
class NetworkDialog : public QDialog
{
    Q_OBJECT

public:
    explicit NetworkDialog(QWidget* parent);
    /// Stops the running tool, as closing the dialog does.
    ~NetworkDialog() override;

private:
    void ping();
    void trace();
    void stop();
    /// Stops the previous run. Returns the host that the user has typed; empty if it is not valid.
    QString startRun(const QString& tool);

    QLineEdit* _host;
    QPlainTextEdit* _output;
    PingProcess _ping;
    TracerouteProcess _traceroute;
    /// The process of the traceroute tool; 0 if it cannot be stopped any more.
    qint64 _traceProcessId = 0;
    /// The number of lines of the traceroute report that are shown.
    int _traceLines = 0;
};
