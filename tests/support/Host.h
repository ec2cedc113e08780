#pragma once

#include <support/Literals.h>
#include <support/Tools.h>

#include <QProcess>

/// The result of a run of ovapp-host. `status` is the exit code, or -1 if it did not exit normally.
struct Outcome
{
    int status = -1;
    QStringList output;
    QStringList errors;
};

inline QStringList linesOf(const QByteArray& text)
{
    QStringList lines = QString::fromUtf8(Tools::textOf(text)).split(u'\n');
    lines.removeLast(); // the empty string after the last line feed
    return lines;
}

inline Outcome outcomeOf(QProcess& host)
{
    if (!host.waitForFinished() || host.exitStatus() != QProcess::NormalExit)
        return {};
    return {host.exitCode(), linesOf(host.readAllStandardOutput()),
            linesOf(host.readAllStandardError())};
}

inline Outcome runHost(const QStringList& arguments)
{
    QProcess host;
    host.start(QStringLiteral(OVAPP_HOST), arguments);
    return outcomeOf(host);
}
