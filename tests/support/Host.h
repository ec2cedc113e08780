#pragma once

#include <support/Literals.h>
#include <support/Tools.h>

#include <QFileInfo>
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
    const bool isExited = host.waitForFinished() && host.exitStatus() == QProcess::NormalExit;
    return {isExited ? host.exitCode() : -1, linesOf(host.readAllStandardOutput()),
            linesOf(host.readAllStandardError())};
}

/// With a drive on Windows, since tests change the current directory, and with it the drive.
inline const QString hostPath = QFileInfo(QStringLiteral(OVAPP_HOST)).absoluteFilePath();

inline Outcome runHost(const QStringList& arguments)
{
    QProcess host;
    host.start(hostPath, arguments);
    return outcomeOf(host);
}
