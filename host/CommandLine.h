#pragma once

#include <QStringList>

#include <optional>

class QCommandLineParser;

namespace Host {

/// Runs the command that the first argument after the program's name asks for, and returns the
/// status to end with.
int runCommand(const QStringList& arguments);

/// Parses a command's arguments, the first of which is the command itself, as its usage names it.
/// Returns the status to end with if that is all: after --help, --version and wrong usage.
std::optional<int> parse(QCommandLineParser& parser, const QStringList& arguments);

} // namespace Host
