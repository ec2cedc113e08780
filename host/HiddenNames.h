#pragma once

#include <QStringList>

namespace Host {

/// The files with the ending of plug-ins, in a directory and below it, that Qt passes over: those
/// in whose path is a name that it cannot decode. Their paths are shown as far as they can be.
QStringList undecodableFiles(const QString& directory, const QString& suffix);

} // namespace Host
