#pragma once

struct QMetaObject;

namespace Host {

/// Notifies the listeners of all nine kinds once, after a plug-in is unloaded. `metaObject` is the
/// meta-object of its root object, which Qt keeps in memory. If a listener of the plug-in is still
/// registered, the process crashes: on Linux always, since the plug-in's code cannot be executed
/// during the call; elsewhere only if the listener's memory has been reused.
void callRemainingListeners(const QMetaObject* metaObject);

} // namespace Host
