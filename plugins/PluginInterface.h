#pragma once

#include <ovapp_export.h>
#include <plugins/PluginInfo.h>

#include <QObject>
#include <QString>

namespace App {

/// The interface of the root object of every plug-in, which is also a `QObject`. A complete
/// plug-in:
///
///     class Marker : public QObject, public App::PluginInterface
///     {
///         Q_OBJECT
///         Q_PLUGIN_METADATA(IID "com.quillmere.beamforge.PluginInterface/1.0")
///         Q_INTERFACES(App::PluginInterface)
///
///     public:
///         quint64 pluginID() const override { return 7; }
///         int supportedBoardTypes() const override { return 1 | 4; }
///         void start() override { _timer.start(1000, this); }
///         void stop() override { _timer.stop(); }
///         App::PluginInfo pluginInfo() const override
///         {
///             App::PluginInfo info;
///             info.set(QStringLiteral("Name"), QStringLiteral("marker"));
///             return info;
///         }
///     ...
///
/// The CMake function `ovapp_add_plugin` builds it. `PluginLoader` loads the file and calls the
/// queries in the order `supportedBoardTypes`, `pluginID`, `pluginInfo`, until it refuses the
/// plug-in. All functions are called on the thread that loads plug-ins, the main thread.
class OVAPP_EXPORT PluginInterface
{
public:
    virtual ~PluginInterface();

    /// Returns the plug-in's identifier. A plug-in with identifier 0 is refused.
    virtual quint64 pluginID() const = 0;
    /// Returns the types of the supported control boards as a bit mask. The plug-in is refused if
    /// it has no bit in common with the type of the board in use.
    virtual int supportedBoardTypes() const = 0;
    /// Starts the plug-in's work. If plug-ins are to be started, the loader calls it after
    /// `pluginInfo`; it may be called again without a `stop` in between. If it throws an exception,
    /// the loader logs a warning, the plug-in stays loaded, and `stop` is called as usual: it must
    /// remove what was registered before the exception.
    virtual void start() = 0;
    /// Stops the plug-in's work and removes everything that `start` has registered. Called before
    /// the plug-in is unloaded, also if it was not started.
    virtual void stop() = 0;
    /// Returns the plug-in's description. Called once each time the plug-in is accepted.
    virtual PluginInfo pluginInfo() const = 0;
    /// Returns a text for the executable, empty by default. The library does not call it.
    virtual QString optionalText() const;
    /// Returns a flag for the executable, true by default. The library does not call it.
    virtual bool optionalFlag() const;
};

} // namespace App

Q_DECLARE_INTERFACE(App::PluginInterface, "com.quillmere.beamforge.PluginInterface/1.0")
