#pragma once

#include <QStringList>

namespace Host {

/// What a process that examines a plug-in tells the one that started it, a JSON object a line: the
/// parts of the report as they become known, and these.
namespace InspectionProtocol {
/// What comes next, in words that follow "while".
constexpr char activity[] = "activity";
/// What has ended the process, in words that follow "ended by".
constexpr char terminationReason[] = "terminationReason";
/// The activity once all is done.
constexpr char lastActivity[] = "the program came to its end";
} // namespace InspectionProtocol

/// `ovapp-host inspect-plugin`, which `ovapp-host plugins` starts for each file: loads one plug-in,
/// asks it what it is, and unloads it, and with --profile starts and stops it between. What comes
/// of it goes to standard output, which the plug-in does not get to see: what it prints goes to
/// standard error.
int inspectPlugin(const QStringList& arguments);

} // namespace Host
