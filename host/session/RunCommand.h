#pragma once

#include <QStringList>

namespace Host {

/// Executes `ovapp-host run`: runs a whole session on a document and prints every event. Returns
/// the exit code.
int run(const QStringList& arguments);

} // namespace Host
