#include <ovshape/FontDatabase.h>

#include <QDir>
#include <QDirIterator>

namespace FontLibrary {

FontDatabase& FontDatabase::instance()
{
    static FontDatabase database;
    return database;
}

void FontDatabase::addFontsFromDirectory(const QString& directory, bool recursive)
{
    const QStringList suffixes{QStringLiteral("*.ttf"), QStringLiteral("*.otf"),
                               QStringLiteral("*.ttc")};
    QDirIterator files(QDir(directory).absolutePath(), suffixes, QDir::Files,
                       recursive ? QDirIterator::Subdirectories : QDirIterator::NoIteratorFlags);
    QStringList found;
    while (files.hasNext())
        found.append(files.next());
    found.sort();

    _fontFiles += found;
    _fontFiles.removeDuplicates();
}

QStringList FontDatabase::fontFiles() const
{
    return _fontFiles;
}

} // namespace FontLibrary
