#pragma once

#include <QStringList>

namespace Host {

/// `ovapp-host run`: a whole session on a document, with everything that happens in it printed.
int run(const QStringList& arguments);

} // namespace Host
