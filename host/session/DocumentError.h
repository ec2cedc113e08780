#pragma once

class QString;

namespace Host {

/// Why the library, which only answers that it cannot, does not open a document: in words, to be
/// read after the file's name and a colon.
QString documentError(const QString& path);

} // namespace Host
