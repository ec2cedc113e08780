#pragma once

#include <ovshape_export.h>

#include <QStringList>

/// The fonts in which text is marked.
namespace FontLibrary {

/// The font files that the program may use. Main thread only.
class OVSHAPE_EXPORT FontDatabase
{
public:
    /// Returns the only object; it exists until the program ends.
    static FontDatabase& instance();

    FontDatabase(const FontDatabase&) = delete;
    FontDatabase& operator=(const FontDatabase&) = delete;

    /// Adds the font files (.ttf, .otf and .ttc, case-insensitive) of a directory, sorted by path;
    /// with `recursive`, also those of its subdirectories. Files that are already in the database
    /// are not added again. Does nothing if the directory does not exist.
    void addFontsFromDirectory(const QString& directory, bool recursive);

    /// Returns the absolute paths of all files, in the order in which they were added.
    QStringList fontFiles() const;

private:
    FontDatabase() = default;

    QStringList _fontFiles;
};

} // namespace FontLibrary
