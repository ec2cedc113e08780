#include "NetworkDialog.h"

#include <system/ProcessInterrupt.h>

#include <QFontDatabase>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QScrollBar>
#include <QVBoxLayout>

NetworkDialog::NetworkDialog(QWidget* parent)
    : QDialog(parent), _host(new QLineEdit(QStringLiteral("localhost"))),
      _pingButton(new QPushButton(tr("&Ping"))), _traceButton(new QPushButton(tr("&Traceroute"))),
      _stopButton(new QPushButton(tr("&Stop"))), _output(new QPlainTextEdit)
{
    setWindowTitle(tr("Network diagnostics"));
    resize(640, 360);
    auto* label = new QLabel(tr("&Host:"));
    label->setBuddy(_host);
    _output->setReadOnly(true);
    _output->setTabChangesFocus(true);
    _output->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    _output->setPlaceholderText(tr("The output of the tool"));
    _stopButton->setEnabled(false);

    auto* layout = new QVBoxLayout(this);
    auto* controls = new QHBoxLayout;
    layout->addLayout(controls);
    layout->addWidget(_output);
    for (QWidget* widget : {static_cast<QWidget*>(label), static_cast<QWidget*>(_host),
                            static_cast<QWidget*>(_pingButton), static_cast<QWidget*>(_traceButton),
                            static_cast<QWidget*>(_stopButton)})
        controls->addWidget(widget);

    connect(_pingButton, &QPushButton::clicked, this, &NetworkDialog::ping);
    connect(_traceButton, &QPushButton::clicked, this, &NetworkDialog::trace);
    connect(_stopButton, &QPushButton::clicked, this, &NetworkDialog::stop);
    connect(this, &QDialog::finished, this, &NetworkDialog::stop);

    // No limit: a run lasts until it is stopped.
    _ping.setCount(0);
    _ping.setProcessChannelMode(QProcess::MergedChannels);
    connect(&_ping, &QProcess::readyReadStandardOutput, this, [this] {
        _pingReport += _ping.readAllStandardOutput();
        showReport(_pingReport);
    });
    connect(&_ping, &QProcess::stateChanged, this, [this](QProcess::ProcessState state) {
        if (state == QProcess::NotRunning)
            endRun();
    });
    connect(&_ping, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            _output->setPlainText(tr("ping: %1").arg(_ping.errorString()));
    });
    // A tool that was stopped may still print something.
    connect(&_traceroute, &TracerouteProcess::readyReadStandardOutput, this, [this] {
        if (_isTracing)
            showReport(_traceroute.readAllStandardOutput());
    });
    connect(&_traceroute, &TracerouteProcess::finished, this, [this] {
        if (_isTracing)
            endRun();
    });
}

NetworkDialog::~NetworkDialog()
{
    _ping.disconnect(this);
    stop();
}

void NetworkDialog::ping()
{
    const QString host = startRun();
    if (!host.isEmpty())
        _ping.doPing(host);
}

void NetworkDialog::trace()
{
    const QString host = startRun();
    if (host.isEmpty())
        return;
    _isTracing = true;
    _traceroute.doTraceroute(host);
    if (_traceroute.toolProcessId() == 0) {
        _output->setPlainText(tr("The traceroute tool cannot be started."));
        endRun();
    }
}

void NetworkDialog::stop()
{
    if (_ping.state() != QProcess::NotRunning) {
        // The tool prints its summary when it is interrupted. On Windows it cannot be.
        if (!System::interruptProcess(_ping.processId()))
            _ping.kill();
    } else if (_isTracing) {
        System::interruptProcess(_traceroute.toolProcessId());
        endRun();
    }
}

QString NetworkDialog::startRun()
{
    // The library passes the text on unchanged, and the tools would take it for options or for
    // several hosts.
    QString host = _host->text().trimmed();
    const QRegularExpression pattern(QStringLiteral("\\A[^-/\\s\\p{Cc}][^\\s\\p{Cc}]*\\z"));
    if (!pattern.match(host).hasMatch()) {
        _output->setPlainText(tr("\"%1\" is not a host name or an address.").arg(host));
        return QString();
    }
    _output->clear();
    _pingReport.clear();
    _pingButton->setEnabled(false);
    _traceButton->setEnabled(false);
    _stopButton->setEnabled(true);
    _stopButton->setFocus();
    return host;
}

void NetworkDialog::endRun()
{
    _isTracing = false;
    _pingButton->setEnabled(true);
    _traceButton->setEnabled(true);
    _stopButton->setEnabled(false);
}

void NetworkDialog::showReport(const QByteArray& report)
{
    _output->setPlainText(QString::fromLocal8Bit(report));
    _output->verticalScrollBar()->setValue(_output->verticalScrollBar()->maximum());
}
