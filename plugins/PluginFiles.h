#pragma once

#include <QStringList>

namespace App {

/// The absolute paths of the files with `suffix`, in any letter case, in a directory and below it,
/// in the order that `PluginLoader::pluginFiles` promises.
QStringList findPluginFiles(const QString& directoryPath, const QString& suffix);

/// Whether a file is a shared library of this system, and the system can load all that it says it
/// holds. Where files are ELF, the system maps them without asking how long they are, and one that
/// was cut short ends the program with a signal. Qt notices only if the cut took the table of
/// sections with it, which need not stand last: tools that change a file's library path leave it in
/// the middle. On Windows Qt itself reads beyond the end of a file that was cut within what it says
/// to Qt.
bool isCompletePluginFile(const QString& path);

} // namespace App
