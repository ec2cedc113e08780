#pragma once

#include <QByteArray>
#include <QString>

#include <cstdio>

/// What the host says on its standard channels, and the status that it ends with.
namespace Host {

/// How the host ends.
enum ExitCode
{
    Success = 0,
    Failure = 1,
    UsageError = 2
};

/// The name by which the host calls itself.
const QLatin1String programName("ovapp-host");

/// Writes bytes and hands them to the system; false, and `std::ferror`, when they cannot be
/// written.
bool write(std::FILE* file, const QByteArray& bytes);
/// Writes a text, encoded in UTF-8, and the end of a line.
void print(std::FILE* file, const QString& text);
/// Says on standard error what is wrong, and returns the status to end with. Control characters in
/// the message are escaped, so that it stays one line.
int fail(ExitCode status, const QString& message);
/// Says on standard error, in the same way, what is amiss though the job goes on.
void warn(const QString& message);

/// A text of the user's, as messages show it.
QString quoted(const QString& text);
/// A text with its control characters escaped, so that it stays one line and does nothing to a
/// terminal.
QString escapeControlCharacters(const QString& text);

} // namespace Host
