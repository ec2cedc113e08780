#pragma once

#include <QByteArray>
#include <QString>

#include <cstdio>
#include <optional>

class QCommandLineParser;
class QStringList;

namespace Host {

/// How the host ends.
enum ExitStatus
{
    Success = 0,
    JobFailed = 1,
    BadUsage = 2
};

/// Runs the command that the first argument after the program's name asks for, and returns the
/// status to end with.
int runCommand(const QStringList& arguments);

/// Parses a command's arguments, the first of which is the command itself, as its usage names it.
/// Returns the status to end with if that is all: after --help, --version and wrong usage.
std::optional<int> parse(QCommandLineParser& parser, const QStringList& arguments);

/// Writes bytes and hands them to the system; false, and `std::ferror`, when they cannot be
/// written.
bool write(std::FILE* file, const QByteArray& bytes);
/// Writes a text, encoded in UTF-8, and the end of a line.
void print(std::FILE* file, const QString& text);
/// Says on standard error what is wrong, and returns the status to end with. Control characters in
/// the message are escaped, so that it stays one line.
int fail(ExitStatus status, const QString& message);
/// Says on standard error, in the same way, what is amiss though the job goes on.
void warn(const QString& message);

/// The line that `fail` says, with its end.
QByteArray failureLine(const QString& message);

/// A text of the user's, as messages show it.
QString quoted(const QString& text);
/// A text with its control characters escaped, so that it stays one line and does nothing to a
/// terminal.
QString onOneLine(const QString& text);

} // namespace Host
