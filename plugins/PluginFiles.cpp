#include <plugins/PluginFiles.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSet>

#include <algorithm>

#ifdef Q_OF_ELF
#include <fcntl.h>
#include <link.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>
#endif

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
    // for every directory: most of the time of a scan would go into these two.
    const QDir directory(path);
    const QFileInfoList entries =
        directory.entryInfoList(QDir::Files | QDir::Dirs | QDir::NoDotAndDotDot, QDir::NoSort);
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
        search(directory.absoluteFilePath(name),
               isLink ? subdirectory.canonicalFilePath() : canonicalPath + QLatin1Char('/') + name);
    }
}

#ifdef Q_OF_ELF
bool readAt(int file, quint64 offset, void* data, std::size_t size)
{
    return ::pread(file, data, size, static_cast<off_t>(offset)) == static_cast<ssize_t>(size);
}

bool holdsItsSegments(int file)
{
    struct stat status;
    ElfW(Ehdr) header;
    if (::fstat(file, &status) != 0 || !readAt(file, 0, &header, sizeof header))
        return false;
    const auto size = static_cast<quint64>(status.st_size);
    std::vector<ElfW(Phdr)> segments(header.e_phnum);
    if (!readAt(file, header.e_phoff, segments.data(), segments.size() * sizeof(ElfW(Phdr))))
        return false;
    return std::all_of(segments.cbegin(), segments.cend(), [size](const ElfW(Phdr) & segment) {
        return segment.p_type != PT_LOAD ||
               (segment.p_offset <= size && segment.p_filesz <= size - segment.p_offset);
    });
}
#endif

} // namespace

QStringList findPluginFiles(const QString& directoryPath, const QString& suffix)
{
    return PluginScan(directoryPath, suffix).files();
}

bool isCompletePluginFile(const QString& path)
{
#ifdef Q_OF_ELF
    // Plain system calls: QFile would double what this adds to the loading of every plug-in.
    const int file = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC);
    if (file < 0)
        return false;
    const bool isComplete = holdsItsSegments(file);
    ::close(file);
    return isComplete;
#else
    Q_UNUSED(path)
    return true;
#endif
}

} // namespace App
