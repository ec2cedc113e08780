#pragma once

#include <QStringList>

namespace Host {

/// `ovapp-host plugins`: every plug-in file, whether it is accepted, and if not, why. Success
/// unless a file is broken: one for another board is not.
int plugins(const QStringList& arguments);

} // namespace Host
