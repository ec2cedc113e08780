#pragma once

#include <QStringList>

namespace Host {

/// Executes `ovapp-host ping`: prints the output of the ping tool as it arrives. Returns `Success`
/// if the host answers.
int ping(const QStringList& arguments);

/// Executes `ovapp-host trace`: prints the output of the traceroute tool as it arrives, until the
/// tool ends. Returns `Success` if the output contains a hop.
int trace(const QStringList& arguments);

} // namespace Host
