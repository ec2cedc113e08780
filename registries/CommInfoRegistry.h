#pragma once

#include <ovapp_export.h>

#include <QList>

namespace App {

class CommInfo;

/// The list of communication channels, which can be started and stopped with one call. It holds
/// plain pointers: whoever registers a channel keeps it alive and unregisters it before destroying
/// it. Nothing is locked: one thread uses it at a time, as a rule the main thread.
///
/// The library never starts or stops a channel by itself, not at its registration either: the
/// executable calls `start` once the plug-ins have registered theirs, and `stop` before they are
/// unloaded. A channel that is registered after that waits for the next `start`, unless whoever
/// registers it starts it.
///
/// A channel may register and unregister channels while it is started or stopped by the registry:
/// one that is unregistered before its turn is passed over, one that is registered has its turn
/// last, in the same pass, and every other has its turn once. Registering again what was
/// unregistered counts as registering: a channel that does so to itself whenever it is started
/// keeps the pass from ending.
class OVAPP_EXPORT CommInfoRegistry
{
public:
    /// Creates the registry, empty; keeps the one that exists. `Application::init` calls it.
    static void init();
    /// The registry, or null before `init` and after `destruct`.
    static CommInfoRegistry* instance();
    /// Deletes the registry, if there is one; channels are neither stopped nor deleted.
    /// `Application::destruct` calls it.
    static void destruct();

    /// Adds a channel at the end and logs its name; null and a channel that is registered already
    /// are ignored.
    void registerCommInfo(CommInfo* info);
    /// Removes a channel, without stopping it, and logs its name, whether it was registered or
    /// not; null is ignored.
    void unregisterCommInfo(CommInfo* info);

    /// Whether this very channel is registered.
    bool contains(CommInfo* info);
    /// The number of channels.
    int count() const;
    /// The channel at `index` in order of registration; null outside 0 to `count()` - 1.
    CommInfo* infoAt(int index);

    /// Starts every channel, in order of registration.
    void start();
    /// Stops every channel, in order of registration too.
    void stop();

private:
    CommInfoRegistry();
    ~CommInfoRegistry();
    Q_DISABLE_COPY(CommInfoRegistry)

    static OVAPP_NO_EXPORT CommInfoRegistry* _p_instance;

    QList<CommInfo*> _infos;
};

} // namespace App
