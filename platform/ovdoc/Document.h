#pragma once

#include <ovdoc_export.h>

#include <QString>

#include <memory>

/// Documents and what they hold.
namespace Doc {

class Storage;

/// A document and the file that it is read from and saved to.
///
/// On disk it is a JSON object in UTF-8: "format" is "ovdoc", "version" is 1, and "printCount"
/// holds the counts "finished" and "target", 32-bit integers that count as 0 where they are
/// missing. A file that names one of these members twice is no document. Every other member, inside
/// "printCount" too, is kept and written back.
class OVDOC_EXPORT Document
{
public:
    /// A new, empty document without a path on `storage`, which it owns from then on.
    explicit Document(Storage* storage);
    Document(const Document&) = delete;
    Document& operator=(const Document&) = delete;
    virtual ~Document();

    /// Loads the file and makes `path` the document's. Anything but a regular file that holds a
    /// document gives false and leaves this one as it was.
    bool open(const QString& path);
    /// Writes the document to `filePath()`: all of it, or nothing and false.
    bool save() const;

    /// The path that the document was opened from or will be saved to, as it was given.
    QString filePath() const;
    /// Says where `save` writes to; no file is touched before.
    void setFilePath(const QString& path);

    /// The document's objects; never null.
    Storage* storage() const;

private:
    struct Private;
    std::unique_ptr<Private> d;
};

} // namespace Doc
