#pragma once

#include <ovapp_export.h>
#include <plugins/PluginInfo.h>

#include <QObject>
#include <QPointer>
#include <QString>

namespace App {

/// What happened to one plug-in file, for example for a dialog that lists the files or for a list
/// of start-up times. A copy remains valid when the plug-in is unloaded. Main thread only.
struct PluginRecord
{
    /// Whether the file is accepted, and if not, why.
    enum class Verdict
    {
        Accepted,
        /// The program does not want to load the file, or it is loaded already.
        LeftOut,
        /// There is no root object: the file is not a Qt plug-in or cannot be loaded.
        NoPlugin,
        /// The plug-in is built for another major version of ovapp.
        OtherVersion,
        /// The root object does not implement `PluginInterface`.
        NoInterface,
        /// The plug-in does not support the type of the board in use.
        OtherBoard,
        /// The plug-in's identifier is 0.
        NoIdentifier,
        /// The constructor of the root object, or `supportedBoardTypes`, `pluginID` or
        /// `pluginInfo`, threw an exception.
        Exception
    };

    /// Returns the name of the verdict for programs: "accepted", "left-out", "no-plugin",
    /// "other-version", "no-interface", "other-board", "no-identifier" or "exception".
    OVAPP_EXPORT QString verdictName() const;

    /// The absolute path.
    QString filePath;
    /// The decision of the loader.
    Verdict verdict = Verdict::NoPlugin;
    /// Why the file is refused, or how an accepted plug-in failed to start or stop: one sentence in
    /// English without a full stop, such as "pluginID() is 0; give the plug-in an identifier".
    /// Empty if the plug-in is accepted and nothing has failed.
    QString reason;
    /// The version of ovapp that the plug-in is built for; empty if the file does not contain it.
    QString builtFor;
    /// The result of `supportedBoardTypes`; 0 if it was not called.
    int boardTypes = 0;
    /// The result of `pluginID`; 0 if it was not called.
    quint64 identifier = 0;
    /// The plug-in's own description; a default record unless it is accepted.
    PluginInfo info;
    /// The durations in milliseconds of loading, including the queries, of `start` and of `stop`;
    /// negative if the step has not happened.
    /// @{
    double loadTime = -1;
    double startTime = -1;
    double stopTime = -1;
    /// @}
    /// The root object; null if there is none or it has been unloaded. Not owned.
    QPointer<QObject> rootObject;
};

} // namespace App
