#include "NetworkDialog.h"

#include <system/ProcessInterrupt.h>

#include <QDialogButtonBox>
#include <QFontDatabase>
#include <QFormLayout>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRegularExpression>

NetworkDialog::NetworkDialog(QWidget* parent)
    : QDialog(parent), _host(new QLineEdit(QStringLiteral("localhost"))),
      _output(new QPlainTextEdit)
{
    constexpr int maximumLines = 5000;
    setWindowTitle(tr("Network diagnostics"));
    resize(640, 360);
    _output->setReadOnly(true);
    _output->setTabChangesFocus(true);
    _output->setMaximumBlockCount(maximumLines);
    _output->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    auto* pingButton = buttons->addButton(tr("&Ping"), QDialogButtonBox::ActionRole);
    auto* traceButton = buttons->addButton(tr("&Traceroute"), QDialogButtonBox::ActionRole);
    auto* stopButton = buttons->addButton(tr("&Stop"), QDialogButtonBox::ActionRole);
    auto* layout = new QFormLayout(this);
    layout->addRow(tr("&Host:"), _host);
    layout->addRow(_output);
    layout->addRow(buttons);
    pingButton->setDefault(true);

    connect(pingButton, &QPushButton::clicked, this, &NetworkDialog::ping);
    connect(traceButton, &QPushButton::clicked, this, &NetworkDialog::trace);
    connect(stopButton, &QPushButton::clicked, this, &NetworkDialog::stop);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(this, &QDialog::finished, this, &NetworkDialog::stop);

    // No limit: a run lasts until it is stopped.
    _ping.setCount(0);
    _ping.setProcessChannelMode(QProcess::MergedChannels);
    connect(&_ping, &QProcess::readyReadStandardOutput, this, [this] {
        while (_ping.canReadLine())
            _output->appendPlainText(QString::fromLocal8Bit(_ping.readLine().trimmed()));
    });
    connect(&_ping, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            _output->appendPlainText(tr("ping cannot be started: on Debian, install iputils-ping"));
    });
    connect(&_traceroute, &TracerouteProcess::readyReadStandardOutput, this, [this] {
        // The whole report. Its last line may be incomplete.
        const QList<QByteArray> lines = _traceroute.readAllStandardOutput().split('\n');
        while (_traceLines < lines.size() - 1)
            _output->appendPlainText(QString::fromLocal8Bit(lines.at(_traceLines++).trimmed()));
    });
    // Emitted seven seconds after the last output. The next run can start before.
    connect(&_traceroute, &TracerouteProcess::finished, this, [this] { _traceProcessId = 0; });
}

NetworkDialog::~NetworkDialog()
{
    _ping.disconnect(this);
    stop();
}

void NetworkDialog::ping()
{
    const QString host = startRun(QStringLiteral("ping"));
    if (!host.isEmpty())
        _ping.doPing(host);
}

void NetworkDialog::trace()
{
    const QString host = startRun(QStringLiteral("traceroute"));
    if (host.isEmpty())
        return;
    _traceLines = 0;
    _traceroute.doTraceroute(host);
    _traceProcessId = _traceroute.toolProcessId();
    if (_traceProcessId == 0)
        _output->appendPlainText(tr("traceroute cannot be started: on Debian, install traceroute"));
}

void NetworkDialog::stop()
{
    // The tool prints its summary when it is interrupted. On Windows it cannot be.
    if (!System::interruptProcess(_ping.processId()))
        _ping.kill();
    System::interruptProcess(_traceProcessId);
    _traceProcessId = 0;
}

QString NetworkDialog::startRun(const QString& tool)
{
    // The library passes the text on unchanged, and the tools would take it for options or for
    // several hosts.
    QString host = _host->text().trimmed();
    const QRegularExpression pattern(QStringLiteral("\\A[^-/\\s\\p{Cc}][^\\s\\p{Cc}]*\\z"));
    if (!pattern.match(host).hasMatch()) {
        _output->appendPlainText(tr("\"%1\" is not a host name or an address.").arg(host));
        return QString();
    }
    stop();
    _ping.kill();
    _ping.waitForFinished();
    _output->appendPlainText(QStringLiteral("> %1 %2").arg(tool, host));
    return host;
}
