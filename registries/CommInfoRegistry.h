#pragma once

#include <ovapp_export.h>

#include <QList>

namespace App {

class CommInfo;

/// The list of communication channels. It starts or stops all of them with one call.
///
/// The registry does not own the channels: keep a channel alive while it is registered, and
/// unregister it before destroying it. The registry does not lock: use it on one thread at a time,
/// normally the main thread.
///
/// The library itself never starts or stops a channel, not even when it is registered. The
/// executable calls `start` after the plug-ins have registered their channels, and `stop` before it
/// unloads the plug-ins. A channel that is registered later is started by the next `start`, unless
/// its plug-in starts it.
///
/// A channel may register and unregister channels while the registry starts or stops it. Channels
/// that are unregistered before their turn are skipped; channels that are registered are called
/// last, in the same iteration; every other channel is called once. A channel that was called,
/// unregistered and registered again is not called again in the same iteration.
class OVAPP_EXPORT CommInfoRegistry
{
public:
    /// Creates an empty registry; does nothing if there is one. `Application::init` calls it.
    static void init();
    /// Returns the registry; null before `init` and after `destruct`.
    static CommInfoRegistry* instance();
    /// Deletes the registry, but neither stops nor deletes the channels; does nothing if there is
    /// none. `Application::destruct` calls it.
    static void destruct();

    /// Appends a channel and logs its name. Does nothing if `info` is null or already registered.
    void registerCommInfo(CommInfo* info);
    /// Removes a channel without stopping it. Logs its name, even if it is not registered. Does
    /// nothing if `info` is null.
    void unregisterCommInfo(CommInfo* info);

    /// Returns true if this channel is registered.
    bool contains(CommInfo* info);
    /// Returns the number of channels.
    int count() const;
    /// Returns the channel at `index` in order of registration; null if `index` is out of range.
    CommInfo* infoAt(int index);

    /// Starts all channels, in order of registration.
    void start();
    /// Stops all channels, also in order of registration.
    void stop();

private:
    CommInfoRegistry();
    ~CommInfoRegistry();
    Q_DISABLE_COPY(CommInfoRegistry)

    static OVAPP_NO_EXPORT CommInfoRegistry* _p_instance;

    QList<CommInfo*> _infos;
};

} // namespace App
