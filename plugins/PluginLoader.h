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

/// Finds, loads, starts, stops and unloads the program's plug-ins, keeps a record of each file, and
/// keeps the plug-in ID value.
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
/// Every file takes the same path: it is left out if the file filter says so; it is refused if it
/// is damaged or built for another major version of ovapp; it is loaded, and its root object is
/// created; the root object must implement `PluginInterface`, support the board in use and have an
/// identifier; its info is taken, and it is started. Later it is stopped and unloaded. The step
/// handler is called before each step, and the record of the file says what happened.
///
/// Plug-ins are unloaded in the reverse order of loading: only the one that was loaded last can be
/// unloaded. Unloading deletes the root object; Qt keeps the code in memory until the program ends,
/// so that the strings of the plug-in's info remain valid. Files are refused silently; `records`
/// returns the reasons.
///
/// Files that are no intact libraries are not opened by Qt or the system's loader, which they could
/// crash. All symbols are resolved on loading, as Windows always does: a plug-in with an unresolved
/// symbol is refused, instead of ending the program when it first uses the symbol.
///
/// The loader catches the exceptions of plug-ins: it logs a warning with the file and the
/// exception's text, and continues. If the constructor of the root object, `supportedBoardTypes`,
/// `pluginID` or `pluginInfo` throws, the file is refused. A plug-in whose `start` throws stays
/// loaded, since it may have registered something, and one whose `stop` throws is unloaded: both as
/// if they had returned. A static object that throws while the library is loaded ends the program;
/// on Windows, the file is refused.
///
/// Main thread only. Neither a plug-in nor a handler may load or unload plug-ins while the loader
/// calls it.
class OVAPP_EXPORT PluginLoader
{
public:
    /// The steps of a plug-in file, in the order in which they happen. A refused file has no Start
    /// and Stop.
    enum class Step
    {
        /// The library is loaded, and its root object created.
        Load,
        /// The root object is checked, and its queries are called.
        Query,
        Start,
        Stop,
        /// The root object is deleted.
        Unload
    };
    /// Called before a step of a file.
    using StepHandler = std::function<void(const QString& filePath, Step step)>;
    /// Returns why a file is left out, in one sentence without a full stop; empty to load it.
    using FileFilter = std::function<QString(const QString& filePath)>;

    PluginLoader() = delete;

    /// @name Files
    /// @{

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
    /// Sets the function that is called for each file before it is opened; an empty function
    /// removes it. It serves to disable single plug-ins, for a safe mode, or for a question after a
    /// crash. An exception that it throws passes to the caller of the loader, and the plug-ins
    /// loaded before stay loaded.
    static void setFileFilter(FileFilter filter);

    /// @}

    /// @name Loading
    /// @{

    /// Scans the plug-in directory and loads every plug-in file as `loadFile` does, in the order of
    /// `pluginFiles`. If `startPlugins` is true, starts each plug-in before it loads the next file.
    /// Clears the infos and the records, but unloads nothing: plug-ins that are already loaded are
    /// accepted and started again. Call `unloadPlugins` first.
    static void loadPlugins(bool startPlugins);
    /// Loads one file, which may be outside the plug-in directory, starts the plug-in if
    /// `startPlugin` is true, and returns the file's record. `unloadPlugins` unloads it like the
    /// others. If it is not in the list of `pluginFiles`, or loaded after a file that follows it
    /// there, it moves to the end of the list. A file whose plug-in is loaded already, since the
    /// last `loadPlugins`, is left out.
    static PluginRecord loadFile(const QString& file, bool startPlugin);
    /// Accepts or refuses the root object of a plug-in that the loader does not own; it may be
    /// null. If it is accepted, keeps its info, starts it if `startPlugins` is true, and returns
    /// true. Otherwise returns false and leaves the object unchanged. There is neither a step nor a
    /// record of it; `filePath`, the file of the object, is used for warnings only. Without a board
    /// description no board is supported.
    static bool loadPlugin(QObject* object, bool startPlugins, const QString& filePath);

    /// @}

    /// @name Unloading
    /// @{

    /// Stops and unloads the plug-in that was loaded last if it was loaded from `file` and the file
    /// exists; otherwise does nothing.
    static void unloadPlugin(const QString& file);
    /// Stops a plug-in without unloading it. Does nothing if the object is null or not a plug-in.
    static void unloadPlugin(QObject* object);
    /// Stops and unloads the plug-ins in the reverse order of loading. A plug-in whose file no
    /// longer exists stays loaded, and so do those loaded before it. `pluginCount`, `pluginInfoOf`
    /// and the number of records do not change until the next `loadPlugins`.
    static void unloadPlugins();

    /// @}

    /// @name Results
    /// @{

    /// Sets the function that is called before each step of a file, for example to show progress
    /// or to note which plug-in ends the program; an empty function removes it. An exception that
    /// it throws passes to the caller of the loader, and the step does not happen: before Load and
    /// Query, the file is not loaded; before Start, Stop and Unload of an accepted plug-in, the
    /// plug-in stays loaded. Before Unload, it has been stopped, and is stopped again when it is
    /// unloaded.
    static void setStepHandler(StepHandler handler);
    /// Returns the records of the files since the last `loadPlugins`, in the order of loading, one
    /// for each path.
    static QList<PluginRecord> records();
    /// Returns the number of files in the list of `pluginFiles`, including refused ones.
    static int pluginCount();
    /// Returns the info of the accepted plug-in at `index`, in order of acceptance since the last
    /// `loadPlugins`; a default info for any other index.
    static PluginInfo pluginInfoOf(int index);

    /// @}

    /// @name The plug-in ID value
    /// @{

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

    /// @}

private:
    static OVAPP_NO_EXPORT void reportStep(const QString& filePath, Step step);
    /// Returns the record of a path; the end of the list if there is none.
    static OVAPP_NO_EXPORT QList<PluginRecord>::iterator recordOf(const QString& filePath);
    /// Replaces an older record of the same path.
    static OVAPP_NO_EXPORT void addRecord(const PluginRecord& record);
    /// Adds an accepted file to the list, through which `unloadPlugins` goes backwards: it must
    /// follow the files that are loaded.
    static OVAPP_NO_EXPORT void listFile(const QString& filePath);

    static OVAPP_NO_EXPORT QStringList _pluginFiles;
    static OVAPP_NO_EXPORT QList<PluginInfo> _pluginInfos;
    static OVAPP_NO_EXPORT QList<PluginRecord> _records;
    static OVAPP_NO_EXPORT StepHandler _stepHandler;
    static OVAPP_NO_EXPORT FileFilter _fileFilter;
    /// The loaders of the accepted plug-ins that are still loaded; owned. The object name is the
    /// path in the record, empty if there is none.
    static OVAPP_NO_EXPORT QList<QPluginLoader*> _pluginLoaders;
};

} // namespace App
