#pragma once

#include <QStringList>

namespace Host {

/// The messages that a process which inspects a plug-in sends to its parent. Each one is a JSON
/// object on one line: it contains new parts of the report, or this member.
namespace InspectionProtocol {
/// The next activity of the process, as a clause that follows "while".
constexpr char activity[] = "activity";
/// The activity after the inspection.
constexpr char lastActivity[] = "the program ended";
} // namespace InspectionProtocol

/// Executes `ovapp-host inspect-plugin`, which `ovapp-host plugins` starts for each file: loads one
/// plug-in, calls its queries, and unloads it; with --profile, also starts and stops it, and checks
/// that it has removed what it registered. Sends the results to standard output; what the plug-in
/// prints there goes to standard error. Returns the exit code.
int inspectPlugin(const QStringList& arguments);

} // namespace Host
