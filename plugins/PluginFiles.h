#pragma once

#include <QStringList>

namespace App {

/// The absolute paths of the files with `suffix`, in any letter case, in a directory and below it,
/// in the order that `PluginLoader::pluginFiles` promises.
QStringList findPluginFiles(const QString& directoryPath, const QString& suffix);

} // namespace App
