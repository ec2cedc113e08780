#pragma once

#include <QStringList>

namespace Host {

/// What Qt passes over in a directory and below it, though there may be plug-ins in it, and why, in
/// a sentence each: files with the ending of plug-ins in whose path is a name that it cannot
/// decode, and directories that it cannot read. Their paths are shown as far as they can be.
QStringList skippedFiles(const QString& directory, const QString& suffix);

} // namespace Host
