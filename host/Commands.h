#pragma once

#include <QStringList>

/// The commands. Each one takes its arguments, of which the first one is the command as its usage
/// line shows it, and returns the exit code.
namespace Host {

/// Runs a whole session on a document and prints every event.
int run(const QStringList& arguments);

/// Prints for each plug-in file, or for the given ones, whether it is accepted, and if not, why.
/// Returns `Success` if each file is accepted or is for another board.
int plugins(const QStringList& arguments);
/// `plugins` starts this command for each file: loads and unloads one file as a program does; with
/// --profile, also starts the plug-in, and checks that it has removed what it registered. Sends the
/// results to standard output; what the plug-in prints there goes to standard error.
int inspectPlugin(const QStringList& arguments);

/// Prints the output of the ping tool as it arrives. Returns `Success` if the host answers.
int ping(const QStringList& arguments);
/// Prints the output of the traceroute tool as it arrives, until the tool ends. Returns `Success`
/// if the output contains a hop.
int trace(const QStringList& arguments);

} // namespace Host
