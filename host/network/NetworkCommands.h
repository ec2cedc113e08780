#pragma once

#include <QStringList>

namespace Host {

/// `ovapp-host ping`: prints the ping tool's report as it comes. Success if the host answered.
int ping(const QStringList& arguments);

/// `ovapp-host trace`: prints the trace-route tool's report as it grows, until the tool ends.
/// Success if the report names a hop.
int trace(const QStringList& arguments);

} // namespace Host
