#pragma once

#include <ovshape_export.h>

#include <QStringList>

/// The fonts that texts are marked in.
namespace FontLibrary {

/// The font files that the program may use. Main thread only.
class OVSHAPE_EXPORT FontDatabase
{
public:
    /// The one database; it exists for as long as the program runs.
    static FontDatabase& instance();

    FontDatabase(const FontDatabase&) = delete;
    FontDatabase& operator=(const FontDatabase&) = delete;

    /// Adds the font files (.ttf, .otf and .ttc, in any letter case) of a directory, in the order
    /// of their paths; with `recursive`, those of its subdirectories too. A file that is known
    /// already is not added again; a missing directory holds none.
    void addFontsFromDirectory(const QString& directory, bool recursive);

    /// The absolute paths of the files added so far, in the order in which they were added.
    QStringList fontFiles() const;

private:
    FontDatabase() = default;

    QStringList _fontFiles;
};

} // namespace FontLibrary
