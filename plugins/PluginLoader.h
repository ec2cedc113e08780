#pragma once

#include <ovapp_export.h>
#include <plugins/PluginInfo.h>

#include <QList>
#include <QStringList>

class QObject;
class QPluginLoader;

namespace App {

/// Finds, loads, starts, stops and unloads the program's plug-ins, and keeps the plug-in ID value.
///
/// An executable loads the plug-ins once the library is up, and unloads them before it goes down:
///
///     App::Application::init();
///     App::PluginLoader::loadPlugins(true);
///     // ...
///     App::PluginLoader::unloadPlugins();
///     App::Application::destruct();
///
/// Plug-ins are unloaded strictly in the reverse order of loading: only the one that was loaded
/// last can be. That destroys its root object; its code stays in memory until the program ends, as
/// is Qt's way, so that the texts of its info remain valid. A file that is no plug-in, or a plug-in
/// that is refused, is passed over without a word; `verdictOn` tells why.
///
/// Main thread only. A plug-in must not load or unload plug-ins while the loader calls it.
class OVAPP_EXPORT PluginLoader
{
public:
    /// What comes of looking at a plug-in's root object: that it is accepted, or why it is not.
    enum class Verdict
    {
        Accepted,
        /// There is no object: the file is no Qt plug-in, or one that cannot be loaded.
        NoPlugin,
        /// The object does not implement `PluginInterface`.
        NoInterface,
        /// The plug-in supports none of the types of the board in use.
        OtherBoard,
        /// The plug-in's identifier is 0.
        NoIdentifier
    };

    PluginLoader() = delete;

    /// The plug-in directory of the settings service; empty when nothing exists at that path.
    static QString pluginsPath();
    /// The ending of plug-in files, without the dot: "dll" on every system, in any letter case.
    static QString pluginSuffix();
    /// The absolute paths of the plug-in files, from one scan that lasts until the next
    /// `loadPlugins`; one that found nothing is repeated at the next call.
    ///
    /// A directory's own files come first, then those of its subdirectories, at any depth, both by
    /// name without regard to letter case; hidden ones are left out. Links to directories are
    /// followed, but a directory that has been searched already, by whatever path, is not
    /// searched again.
    static QStringList pluginFiles();
    /// Whether the file is one that is never loaded, by its name up to the first dot; logs a
    /// warning if so. There are no such files at present.
    static bool isDiscard(const QString& file);

    /// Scans afresh and loads every plug-in file in the order of `pluginFiles`; with
    /// `startPlugins`, starts each plug-in before the next is loaded. Plug-ins that are loaded
    /// already stay so, and are accepted, and started, once more: call `unloadPlugins` before.
    ///
    /// What a plug-in throws reaches the caller. Those before it are loaded then, and can be
    /// unloaded; those after it are not. The one that threw stays in memory until the program ends
    /// and is neither stopped nor unloaded, but what it registered before stays registered; if it
    /// threw in `start`, its info is kept. End the session then, rather than load again.
    static void loadPlugins(bool startPlugins);
    /// Whether `loadPlugins` accepted a plug-in from this file that has not been unloaded since.
    static bool isLoaded(const QString& file);
    /// Sets a loader on a file, loads the file unless it is loaded, and returns its root object;
    /// null when it is no Qt plug-in or cannot be loaded. Unlike `QPluginLoader` it leaves a file
    /// alone that `System::libraryFileProblem` finds fault with, where Qt or the system's own
    /// loader would crash: the loader then has no file. It also asks for every symbol at once, as
    /// Windows does everywhere: a plug-in that lacks a function is refused here, and does not end
    /// the program when it first calls it.
    ///
    /// The object is the plug-in file's own, one for all loaders of the file: never delete it. It
    /// lives until the last of them unloads the file; destroying a loader does not. The loader
    /// stays the caller's.
    static QObject* rootObjectOf(const QString& file, QPluginLoader& loader);
    /// Takes one root object as a plug-in: keeps its info and, with `startPlugins`, starts it.
    /// Returns false, and leaves the object alone, unless `verdictOn` accepts it. `filePath`, the
    /// file that it came from, does not matter. The object is not owned, nor unloaded later.
    static bool loadPlugin(QObject* object, bool startPlugins, const QString& filePath);
    /// Whether an object, which may be null, would be accepted as a plug-in as things stand, and if
    /// not, why. It changes nothing and asks the plug-in no more than it needs to: first for the
    /// boards, and only if they fit for the identifier. Without a board description no board fits.
    static Verdict verdictOn(QObject* object);
    /// Stops and unloads the plug-in that was loaded last, if it came from `file`. Does nothing for
    /// any other file, loaded or not, nor for one that is gone from the disk.
    static void unloadPlugin(const QString& file);
    /// Stops a plug-in that stays loaded. Does nothing for null and for an object that is no
    /// plug-in.
    static void unloadPlugin(QObject* object);
    /// Stops and unloads the plug-ins in the reverse order of loading. Until the next
    /// `loadPlugins`, `pluginCount` and `pluginInfoOf` answer as before. A plug-in whose file is
    /// gone from the disk stays loaded, and so do those loaded before it.
    static void unloadPlugins();

    /// The number of files that the last scan found, of refused plug-ins too.
    static int pluginCount();
    /// The info of the accepted plug-in at `index`, in order of acceptance since the last
    /// `loadPlugins`; a default record for any other index.
    static PluginInfo pluginInfoOf(int index);

    /// The stored plug-in ID value, the setting "Plugin/value"; `defaultPluginValue` when it is not
    /// stored, and 0 when it is no unsigned 64-bit number.
    static unsigned long long readPluginIDValue();
    /// Stores the plug-in ID value. Returns false, and writes nothing, when it is stored already.
    /// The run value stays as it is.
    static bool writePluginIDValue(unsigned long long value);
    /// Makes the stored plug-in ID value that of this run, the run value "PluginIDValue".
    static void initPluginIDValue();
    /// What `readPluginIDValue` gives while nothing is stored: 0.
    static unsigned long long defaultPluginValue();

private:
    static OVAPP_NO_EXPORT QStringList _pluginFiles;
    static OVAPP_NO_EXPORT QList<PluginInfo> _pluginInfos;
    /// Of the plug-ins that `loadPlugins` accepted and that are still loaded; owned.
    static OVAPP_NO_EXPORT QList<QPluginLoader*> _pluginLoaders;
};

} // namespace App
