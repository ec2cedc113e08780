#pragma once

#include <ovapp_export.h>
#include <plugins/PluginInfo.h>

#include <QObject>
#include <QString>

namespace App {

/// What the root object of every plug-in is, beside being a `QObject`. A whole plug-in:
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
/// It is built with the CMake function `ovapp_add_plugin`. `PluginLoader` loads it, asks it in the
/// order `supportedBoardTypes`, `pluginID`, `pluginInfo`, and goes no further once it refuses it.
/// Everything is called on the thread that loads plug-ins, the main thread.
class OVAPP_EXPORT PluginInterface
{
public:
    virtual ~PluginInterface();

    /// The plug-in's identifier; a plug-in with 0 is refused.
    virtual quint64 pluginID() const = 0;
    /// The control boards that the plug-in is for, as a set of bits; it is refused unless it has
    /// one in common with the board in use.
    virtual int supportedBoardTypes() const = 0;
    /// Begins the plug-in's work. The loader calls it after `pluginInfo` if it is to start
    /// plug-ins, and may call it again without a `stop` before. If it throws an exception, the
    /// loader logs that, the plug-in stays loaded, and `stop` is called as usual: it has to take
    /// back what was registered until then.
    virtual void start() = 0;
    /// Ends the plug-in's work. Called before the plug-in is unloaded, whether it was started or
    /// not.
    virtual void stop() = 0;
    /// What the plug-in tells about itself; asked once each time it is accepted.
    virtual PluginInfo pluginInfo() const = 0;
    /// A text for the executable, which alone asks for it; empty by default.
    virtual QString optionalText() const;
    /// A flag for the executable, which alone asks for it; true by default.
    virtual bool optionalFlag() const;
};

} // namespace App

Q_DECLARE_INTERFACE(App::PluginInterface, "com.quillmere.beamforge.PluginInterface/1.0")
