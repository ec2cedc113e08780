#pragma once

#include <netdiag/PingProcess.h>
#include <netdiag/TracerouteProcess.h>

#include <QDialog>

class QLineEdit;
class QPlainTextEdit;
class QPushButton;

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
    /// Returns the host that the user has typed, and prepares the dialog for a run. If the text is
    /// not a host, shows an error and returns an empty string.
    QString startRun();
    void endRun();
    void showReport(const QByteArray& report);

    QLineEdit* _host;
    QPushButton* _pingButton;
    QPushButton* _traceButton;
    QPushButton* _stopButton;
    QPlainTextEdit* _output;
    PingProcess _ping;
    QByteArray _pingReport;
    TracerouteProcess _traceroute;
    bool _isTracing = false;
};
