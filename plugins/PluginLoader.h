#pragma once

#include <ovapp_export.h>
#include <plugins/PluginInfo.h>
#include <plugins/PluginRecord.h>

#include <QList>
#include <QStringList>

#include <functional>

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
/// is Qt's way, so that the texts of its info remain valid. A file that is refused is skipped
/// silently; `records` has the reason.
///
/// No function throws what a plug-in throws: the loader logs a warning with the file and the
/// exception's text, and continues. If the constructor of the root object, `supportedBoardTypes`,
/// `pluginID` or `pluginInfo` throws, the file is refused. A plug-in whose `start` throws stays
/// loaded, since it may have registered something, and one whose `stop` throws is unloaded: both as
/// if they had returned.
///
/// Main thread only. A plug-in must not load or unload plug-ins while the loader calls it.
class OVAPP_EXPORT PluginLoader
{
public:
    /// Whether a plug-in is accepted, and if not, why.
    using Verdict = PluginVerdict;
    /// Called with the path of a file, its index, from 0, and the number of files.
    using ProgressHandler = std::function<void(const QString& filePath, int index, int count)>;

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
    static void loadPlugins(bool startPlugins);
    /// Sets the function that `loadPlugins` calls before it loads each file, for example to show
    /// progress; an empty one removes it. An exception that it throws ends `loadPlugins` and passes
    /// to the caller; the plug-ins loaded until then stay loaded.
    static void setProgressHandler(ProgressHandler handler);
    /// The records of the files that the last `loadPlugins` found, in the order of `pluginFiles`.
    static QList<PluginRecord> records();
    /// A verdict in lower case: "accepted", "no-plugin", "no-interface", "other-board",
    /// "no-identifier" or "exception".
    static QString verdictName(Verdict verdict);

    /// Loads a file, even if it is loaded already, and returns its root object; null if it is not a
    /// Qt plug-in, cannot be loaded, or the object's constructor throws. Unlike `QPluginLoader` it
    /// does not open a file that `System::libraryFileError` rejects, with which Qt or the
    /// system's own loader would crash: the loader then has no file. It also resolves all symbols
    /// at once, as Windows always does: a plug-in that lacks a function is refused here, instead of
    /// ending the program when it first calls it.
    ///
    /// All loaders of a file share the object: never delete it. It lives until the last of them
    /// unloads the file; destroying a loader does not unload it. The loader remains the caller's.
    static QObject* rootObjectOf(const QString& file, QPluginLoader& loader);
    /// Loads a file as `rootObjectOf` does and returns a record with its root object, or if it has
    /// none, with the verdict and the reason. `inspect` completes the record.
    static PluginRecord recordOf(const QString& file, QPluginLoader& loader);
    /// Asks the root object of a record, if there is one, whether it would be accepted, and sets
    /// the verdict, the reason and, if it is accepted, the info. Changes nothing else.
    static void inspect(PluginRecord& record);

    /// Accepts or refuses one root object, which may be null: if `inspect` accepts it, keeps its
    /// info and, with `startPlugins`, starts it. Otherwise returns false and leaves the object
    /// alone. `filePath`, the file that it came from, serves for warnings only. The object is not
    /// owned, nor unloaded later, and it has no record.
    static bool loadPlugin(QObject* object, bool startPlugins, const QString& filePath);
    /// Whether an object, which may be null, would be accepted as a plug-in with the board in use,
    /// and if not, why. Calls `supportedBoardTypes` and, if the board is supported, `pluginID`.
    /// Without a board description no board is supported.
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
    static OVAPP_NO_EXPORT bool accept(PluginRecord& record, bool startPlugins);

    static OVAPP_NO_EXPORT QStringList _pluginFiles;
    static OVAPP_NO_EXPORT QList<PluginInfo> _pluginInfos;
    static OVAPP_NO_EXPORT QList<PluginRecord> _records;
    static OVAPP_NO_EXPORT ProgressHandler _progressHandler;
    /// Of the plug-ins that `loadPlugins` accepted and that are still loaded; owned.
    static OVAPP_NO_EXPORT QList<QPluginLoader*> _pluginLoaders;
};

} // namespace App
