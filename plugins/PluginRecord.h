#pragma once

#include <plugins/PluginInfo.h>

#include <QObject>
#include <QPointer>
#include <QString>

namespace App {

/// Whether a plug-in is accepted, and if not, why.
enum class PluginVerdict
{
    Accepted,
    /// There is no root object: the file is not a Qt plug-in or cannot be loaded.
    NoPlugin,
    /// The root object does not implement `PluginInterface`.
    NoInterface,
    /// The plug-in does not support the type of the board in use.
    OtherBoard,
    /// The plug-in's identifier is 0.
    NoIdentifier,
    /// The constructor of the root object, or `supportedBoardTypes`, `pluginID` or `pluginInfo`,
    /// threw an exception.
    Exception
};

/// The result of loading one plug-in file, for example for a dialog that lists the files. A copy
/// remains valid when the plug-in is unloaded. Main thread only.
struct PluginRecord
{
    /// The absolute path.
    QString filePath;
    /// The decision of the loader.
    PluginVerdict verdict = PluginVerdict::NoPlugin;
    /// Why the file is refused, or how an accepted plug-in failed to start: one sentence in English
    /// without a full stop, such as "pluginID() is 0; give the plug-in an identifier". Empty if the
    /// plug-in is accepted and nothing has failed.
    QString reason;
    /// The plug-in's own description; a default record unless it is accepted.
    PluginInfo info;
    /// The root object; null if there is none or it has been unloaded. Not owned.
    QPointer<QObject> rootObject;
};

} // namespace App
