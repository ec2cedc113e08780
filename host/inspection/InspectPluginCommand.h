#pragma once

#include <QStringList>

namespace Host {

/// What a process that examines a plug-in tells the one that started it, a JSON object a line: the
/// parts of the report as they become known, and these.
namespace Tale {
/// What comes next, in words that follow "while".
constexpr char occupation[] = "occupation";
/// What has ended the process, in words that follow "ended by".
constexpr char ending[] = "ending";
/// The occupation once all is done.
constexpr char lastOccupation[] = "the program came to its end";
} // namespace Tale

/// `ovapp-host examine-plugin`, which `ovapp-host plugins` starts for each file: loads one plug-in,
/// asks it what it is, and unloads it, and with --profile starts and stops it between. What comes
/// of it goes to standard output, which the plug-in does not get to see: what it prints goes to
/// standard error.
int examinePlugin(const QStringList& arguments);

} // namespace Host
