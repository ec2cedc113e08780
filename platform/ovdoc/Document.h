#pragma once

#include <ovdoc_export.h>

#include <QString>

#include <memory>

/// Documents and their objects.
namespace Doc {

class Storage;

/// A document, which is loaded from and saved to a file.
///
/// The file contains a JSON object in UTF-8: "format" is "ovdoc", "version" is 1, and "printCount"
/// is an object with the counts "finished" and "target", 32-bit integers that default to 0. Files
/// with other values or with duplicates of these members are rejected. All other members, inside
/// "printCount" too, are kept and saved.
class OVDOC_EXPORT Document
{
public:
    /// Creates an empty document without a path; takes ownership of `storage`.
    explicit Document(Storage* storage);
    Document(const Document&) = delete;
    Document& operator=(const Document&) = delete;
    virtual ~Document();

    /// Loads the document from `path`, which becomes its file path. Returns false, and leaves the
    /// document unchanged, if `path` is not a readable regular file with a valid document.
    bool open(const QString& path);
    /// Saves the document to `filePath()`. Returns false on failure; the file is then unchanged.
    bool save() const;
    /// Returns the reason why the last `open` or `save` failed: one clause without a full stop,
    /// with line and column for invalid JSON. Empty if it succeeded.
    QString errorString() const;

    /// Returns the path passed to `setFilePath` or the last successful `open`, unchanged.
    QString filePath() const;
    /// Sets the path that `save` writes to. Does not access the file.
    void setFilePath(const QString& path);

    /// Returns the document's objects; never null.
    Storage* storage() const;

private:
    struct Private;
    std::unique_ptr<Private> d;
};

} // namespace Doc
