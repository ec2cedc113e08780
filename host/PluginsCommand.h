#pragma once

#include <QStringList>

namespace Host {

/// `ovapp-host plugins`: every plug-in file, whether it is accepted, and if not, why. Success if
/// all are accepted.
int plugins(const QStringList& arguments);

} // namespace Host
