#pragma once

#include <QStringList>

namespace Host {

/// The messages that a process which inspects a plug-in sends to its parent: one JSON object per
/// line, with parts of the report as they become known, and these.
namespace InspectionProtocol {
/// What the process does next, in words that follow "while".
constexpr char activity[] = "activity";
/// What terminates the process, in words that follow "ended by".
constexpr char terminationReason[] = "terminationReason";
/// The activity after the inspection.
constexpr char lastActivity[] = "the program ended";
} // namespace InspectionProtocol

/// Executes `ovapp-host inspect-plugin`, which `ovapp-host plugins` starts for each file: loads one
/// plug-in, calls its queries, and unloads it; with --profile, also starts and stops it, and checks
/// that it has removed what it registered. Sends the results to standard output; what the plug-in
/// prints there goes to standard error. Returns the exit code.
int inspectPlugin(const QStringList& arguments);

} // namespace Host
