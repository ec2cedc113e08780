#pragma once

#include <QStringList>

namespace App {

/// Returns the absolute paths of the files with `suffix`, in upper or lower case, in a directory
/// and its subdirectories, in the order that `PluginLoader::pluginFiles` documents.
QStringList findPluginFiles(const QString& directoryPath, const QString& suffix);

} // namespace App
