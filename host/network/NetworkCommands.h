#pragma once

#include <QStringList>

namespace Host {

/// `ovapp-host ping`: prints the output of the ping tool as it arrives. Returns `Success` if the
/// host answers.
int ping(const QStringList& arguments);

/// `ovapp-host trace`: prints the output of the traceroute tool as it arrives, until the tool ends.
/// Returns `Success` if the output contains a hop.
int trace(const QStringList& arguments);

} // namespace Host
