#include <plugins/PluginFiles.h>

#include <QDir>
#include <QFileInfo>
#include <QSet>

namespace App {

namespace {

/// One search of a directory and all below it.
class PluginScan
{
public:
    PluginScan(const QString& path, const QString& suffix)
        : _ending(QStringLiteral(".%1").arg(suffix))
    {
        search(path, QFileInfo(path).canonicalFilePath());
    }

    const QStringList& files() const { return _files; }

private:
    void search(const QString& path, const QString& canonicalPath);

    const QString _ending;
    /// The canonical paths of the directories searched, so that a cycle of links ends.
    QSet<QString> _searched;
    QStringList _files;
};

void PluginScan::search(const QString& path, const QString& canonicalPath)
{
    if (_searched.contains(canonicalPath))
        return;
    _searched.insert(canonicalPath);

    // One listing for files and subdirectories, and no name filter, which QDir would compile anew
    // for every directory: most of the time of a scan would go into these two. QDir's own order is
    // the one wanted.
    const QDir directory(path);
    const QFileInfoList entries =
        directory.entryInfoList(QDir::Files | QDir::Dirs | QDir::NoDotAndDotDot);
    QFileInfoList subdirectories;
    for (const QFileInfo& entry : entries) {
        if (entry.isDir())
            subdirectories.append(entry);
        else if (entry.fileName().endsWith(_ending, Qt::CaseInsensitive))
            _files.append(directory.absoluteFilePath(entry.fileName()));
    }
    for (const QFileInfo& subdirectory : qAsConst(subdirectories)) {
        const QString name = subdirectory.fileName();
        // Only a link leads elsewhere, so only a link is worth asking the file system about.
        const bool isLink = subdirectory.isSymLink() || subdirectory.isJunction();
        const QString canonical =
            isLink ? subdirectory.canonicalFilePath() : canonicalPath + QLatin1Char('/') + name;
        // A path through a shortcut of Windows is one for Qt only: the system loads nothing by it.
        search(subdirectory.isShortcut() ? canonical : directory.absoluteFilePath(name), canonical);
    }
}

} // namespace

QStringList findPluginFiles(const QString& directoryPath, const QString& suffix)
{
    return PluginScan(directoryPath, suffix).files();
}

} // namespace App
