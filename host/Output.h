#pragma once

#include <QByteArray>
#include <QString>

#include <cstdio>

/// Output on the standard streams, and the exit code.
namespace Host {

enum ExitCode
{
    Success = 0,
    Failure = 1,
    UsageError = 2
};

/// The name with which messages on standard error begin.
const QLatin1String programName("ovapp-host");
/// The name of the executable, which depends on the version of Qt.
const QLatin1String executableName(OVAPP_HOST_NAME);

/// Writes and flushes bytes. Returns false, and sets the stream's error indicator, if that fails.
bool write(std::FILE* file, const QByteArray& bytes);
/// Writes a line, encoded in UTF-8.
void print(std::FILE* file, const QString& text);
/// Prints an error message on standard error and returns the exit code. Characters that are
/// not printable are escaped, so that the message is one line.
int fail(ExitCode exitCode, const QString& message);
/// Prints a warning on standard error, in the same way.
void warn(const QString& message);

/// Returns a text from the user in quotes, for messages.
QString quoted(const QString& text);
/// Returns the verdict of a plug-in record or report, and its reason, as a text for users.
QString verdictText(const QString& verdict, const QString& reason);
/// Returns a text with the characters escaped that are not printable, so that it is one line and
/// cannot control a terminal.
QString escapeNonPrintable(const QString& text);

} // namespace Host
