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
/// An executable loads the plug-ins after it has initialised the library, and unloads them before
/// it shuts the library down:
///
///     App::Application::init();
///     App::PluginLoader::loadPlugins(true);
///     // ...
///     App::PluginLoader::unloadPlugins();
///     App::Application::destruct();
///
/// Plug-ins are unloaded in the reverse order of loading: only the one that was loaded last can be
/// unloaded. Unloading deletes the root object; Qt keeps the code in memory until the program ends,
/// so that the strings of the plug-in's info remain valid. Refused files are skipped silently;
/// `records` returns the reasons.
///
/// The loader catches the exceptions of plug-ins: it logs a warning with the file and the
/// exception's text, and continues. If the constructor of the root object, `supportedBoardTypes`,
/// `pluginID` or `pluginInfo` throws, the file is refused. A plug-in whose `start` throws stays
/// loaded, since it may have registered something, and one whose `stop` throws is unloaded: both as
/// if they had returned. A static object that throws while the library is loaded ends the program;
/// on Windows, the file is refused.
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

    /// Returns the plug-in directory of the settings service; empty if it does not exist.
    static QString pluginsPath();
    /// Returns the suffix of plug-in files, "dll" on every system; files may have it in upper case.
    static QString pluginSuffix();
    /// Returns the absolute paths of the plug-in files. The result of a scan is kept until the next
    /// `loadPlugins`; if it is empty, the next call scans again.
    ///
    /// The files of a directory come before those of its subdirectories, each sorted by name,
    /// ignoring case. Hidden files and directories are skipped. Links to directories are followed,
    /// but no directory is searched twice.
    static QStringList pluginFiles();
    /// Returns true, and logs a warning, if the file's name up to the first dot is on the list of
    /// files that are never loaded. The list is currently empty.
    static bool isDiscard(const QString& file);

    /// Scans the plug-in directory and loads every plug-in file in the order of `pluginFiles`. If
    /// `startPlugins` is true, starts each plug-in before it loads the next file. Plug-ins that are
    /// already loaded are accepted and started again: call `unloadPlugins` first.
    static void loadPlugins(bool startPlugins);
    /// Sets the function that `loadPlugins` calls before it loads each file, for example to show
    /// progress; an empty function removes it. An exception that it throws ends `loadPlugins` and
    /// passes to the caller; the plug-ins loaded before stay loaded.
    static void setProgressHandler(ProgressHandler handler);
    /// Returns the records of the files that the last `loadPlugins` found, in the order of
    /// `pluginFiles`.
    static QList<PluginRecord> records();
    /// Returns the name of a verdict: "accepted", "no-plugin", "no-interface", "other-board",
    /// "no-identifier" or "exception".
    static QString verdictName(Verdict verdict);

    /// Loads a file, even if it is already loaded, and returns its root object. Returns null if it
    /// is not a Qt plug-in, cannot be loaded, or the object's constructor throws. Unlike
    /// `QPluginLoader`, it does not open files that `System::libraryFileError` rejects, which could
    /// crash Qt or the system's loader; `loader` then has no file. It also resolves all symbols at
    /// once, as Windows always does: a plug-in with an unresolved symbol is refused, instead of
    /// ending the program when it first uses the symbol.
    ///
    /// All loaders of a file share the object, which must not be deleted. It exists until the last
    /// of them unloads the file; the destructor of a loader does not unload it.
    static QObject* rootObjectOf(const QString& file, QPluginLoader& loader);
    /// Loads a file as `rootObjectOf` does and returns a record with its root object, or if there
    /// is none, with the verdict and the reason. `inspect` completes the record.
    static PluginRecord recordOf(const QString& file, QPluginLoader& loader);
    /// Calls the queries of the root object of a record, if there is one, and sets the verdict, the
    /// reason and, if the plug-in is accepted, the info. Changes nothing else.
    static void inspect(PluginRecord& record);

    /// Accepts or refuses a root object, which may be null. If `inspect` accepts it, keeps its
    /// info, starts it if `startPlugins` is true, and returns true. Otherwise returns false and
    /// leaves the object unchanged. `filePath`, the file of the object, is used for warnings only.
    /// The loader does not own the object, does not unload it, and keeps no record of it.
    static bool loadPlugin(QObject* object, bool startPlugins, const QString& filePath);
    /// Returns the verdict on an object, which may be null, with the board in use. Calls
    /// `supportedBoardTypes` and, if the board is supported, `pluginID`. Without a board
    /// description no board is supported.
    static Verdict verdictOn(QObject* object);
    /// Stops and unloads the plug-in that was loaded last if it was loaded from `file` and the file
    /// exists; otherwise does nothing.
    static void unloadPlugin(const QString& file);
    /// Stops a plug-in without unloading it. Does nothing if the object is null or not a plug-in.
    static void unloadPlugin(QObject* object);
    /// Stops and unloads the plug-ins in the reverse order of loading. A plug-in whose file no
    /// longer exists stays loaded, and so do those loaded before it. `pluginCount` and
    /// `pluginInfoOf` do not change until the next `loadPlugins`.
    static void unloadPlugins();

    /// Returns the number of files that the last scan found, including refused ones.
    static int pluginCount();
    /// Returns the info of the accepted plug-in at `index`, in order of acceptance since the last
    /// `loadPlugins`; a default info for any other index.
    static PluginInfo pluginInfoOf(int index);

    /// Returns the stored plug-in ID value, the setting "Plugin/value"; `defaultPluginValue` if it
    /// is not stored, and 0 if it is not an unsigned 64-bit integer.
    static unsigned long long readPluginIDValue();
    /// Stores the plug-in ID value. Returns false, and writes nothing, if it is already stored.
    /// Does not change the run value.
    static bool writePluginIDValue(unsigned long long value);
    /// Copies the stored plug-in ID value to the run value "PluginIDValue".
    static void initPluginIDValue();
    /// Returns the plug-in ID value that applies if none is stored: 0.
    static unsigned long long defaultPluginValue();

private:
    static OVAPP_NO_EXPORT bool accept(PluginRecord& record, bool startPlugins);

    static OVAPP_NO_EXPORT QStringList _pluginFiles;
    static OVAPP_NO_EXPORT QList<PluginInfo> _pluginInfos;
    static OVAPP_NO_EXPORT QList<PluginRecord> _records;
    static OVAPP_NO_EXPORT ProgressHandler _progressHandler;
    /// The loaders of the accepted plug-ins that are still loaded; owned.
    static OVAPP_NO_EXPORT QList<QPluginLoader*> _pluginLoaders;
};

} // namespace App
