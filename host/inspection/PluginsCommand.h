#pragma once

#include <QStringList>

namespace Host {

/// Executes `ovapp-host plugins`: prints for each plug-in file, or for the given ones, whether it
/// is accepted, and if not, why. Returns the exit code: `Success` if each file is accepted or is
/// for another board.
int plugins(const QStringList& arguments);

} // namespace Host
