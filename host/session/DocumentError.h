#pragma once

class QString;

namespace Host {

/// Returns why the library does not open a document, which itself only returns null: a sentence
/// that follows the file's name and a colon.
QString documentError(const QString& path);

} // namespace Host
