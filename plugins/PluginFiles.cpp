#include <plugins/PluginFiles.h>

#include <QDir>
#include <QFileInfo>
#include <QSet>

namespace App {

namespace {

/// A search of a directory and its subdirectories.
class PluginScan
{
public:
    PluginScan(const QString& path, const QString& suffix)
        : _suffix(QStringLiteral(".%1").arg(suffix))
    {
        search(path, QFileInfo(path).canonicalFilePath());
    }

    const QStringList& files() const { return _files; }

private:
    void search(const QString& path, const QString& canonicalPath);

    const QString _suffix;
    /// The canonical paths of the directories searched, so that a cycle of links ends.
    QSet<QString> _searched;
    QStringList _files;
};

void PluginScan::search(const QString& path, const QString& canonicalPath)
{
    if (_searched.contains(canonicalPath))
        return;
    _searched.insert(canonicalPath);

    // One listing for files and subdirectories, without a name filter, which QDir would compile for
    // every directory: a second listing and the filter would take most of the time of a scan. The
    // default order of QDir is the documented one.
    const QDir directory(path);
    const QFileInfoList entries =
        directory.entryInfoList(QDir::Files | QDir::Dirs | QDir::NoDotAndDotDot);
    QFileInfoList subdirectories;
    for (const QFileInfo& entry : entries) {
        if (entry.isDir())
            subdirectories.append(entry);
        else if (entry.fileName().endsWith(_suffix, Qt::CaseInsensitive))
            _files.append(directory.absoluteFilePath(entry.fileName()));
    }
    for (const QFileInfo& subdirectory : qAsConst(subdirectories)) {
        const QString name = subdirectory.fileName();
        // Only links need a system call for their canonical path.
        const bool isLink = subdirectory.isSymLink() || subdirectory.isJunction();
        const QString canonical =
            isLink ? subdirectory.canonicalFilePath() : canonicalPath + QLatin1Char('/') + name;
        // Windows cannot load a library by a path through a shortcut; only Qt resolves it.
        search(subdirectory.isShortcut() ? canonical : directory.absoluteFilePath(name), canonical);
    }
}

} // namespace

QStringList findPluginFiles(const QString& directoryPath, const QString& suffix)
{
    return PluginScan(directoryPath, suffix).files();
}

} // namespace App
