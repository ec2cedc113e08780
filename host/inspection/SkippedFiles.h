#pragma once

#include <QStringList>

namespace Host {

/// Returns a warning for each entry below a directory that may contain or be a plug-in but that the
/// scan for plug-in files skips: directories that cannot be read, links to missing files,
/// other special files, and libraries with another suffix than that of plug-ins.
QStringList skippedFiles(const QString& directory, const QString& suffix);

} // namespace Host
