#pragma once

#include <QStringList>

#include <optional>

class QCommandLineParser;

namespace Host {

/// Executes the command that the first argument after the program's name selects, and returns the
/// exit code.
int runCommand(const QStringList& arguments);

/// Parses the arguments of a command; the first one is the command as its usage line shows it.
/// Returns the exit code after --help, --version and a usage error, otherwise an empty value.
std::optional<int> parse(QCommandLineParser& parser, const QStringList& arguments);

} // namespace Host
