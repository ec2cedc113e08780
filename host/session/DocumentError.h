#pragma once

class QString;

namespace Host {

/// Returns the reason why a document cannot be opened, as a clause that follows the file name and a
/// colon. The library itself only returns null.
QString documentError(const QString& path);

} // namespace Host
