#pragma once

#include <QtGlobal>

/// The network tools of the system that the library is built for.
namespace SystemTools {

constexpr char ping[] = "ping";

#ifdef Q_OS_WIN
constexpr bool pingRunsUntilStopped = false;
constexpr char traceroute[] = "tracert";
constexpr char tracerouteMaxHops[] = "-h";
#else
constexpr bool pingRunsUntilStopped = true;
constexpr char traceroute[] = "traceroute";
constexpr char tracerouteMaxHops[] = "-m";
#endif

} // namespace SystemTools
