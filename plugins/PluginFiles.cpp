#include <plugins/PluginFiles.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSet>

#include <algorithm>
#include <vector>

#ifdef Q_OF_ELF
#include <fcntl.h>
#include <link.h>
#include <sys/stat.h>
#include <unistd.h>
#endif
#ifdef Q_OS_WIN
#include <qt_windows.h>
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
        const QString canonical =
            isLink ? subdirectory.canonicalFilePath() : canonicalPath + QLatin1Char('/') + name;
        // A path through a shortcut of Windows is one for Qt only: the system loads nothing by it.
        search(subdirectory.isShortcut() ? canonical : directory.absoluteFilePath(name), canonical);
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
    if (::fstat(file, &status) != 0 || !S_ISREG(status.st_mode) ||
        !readAt(file, 0, &header, sizeof header))
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

#ifdef Q_OS_WIN
bool readAt(QFile& file, qint64 offset, void* data, std::size_t size)
{
    const auto length = static_cast<qint64>(size);
    return file.seek(offset) && file.read(static_cast<char*>(data), length) == length;
}

/// Whether the file is as long as its sections want it, and names what it imports: where the rest
/// of a file is missing or has come out as zeros, it crashes as soon as it is loaded.
bool holdsItsSections(QFile& file)
{
    IMAGE_DOS_HEADER dos;
    IMAGE_NT_HEADERS header;
    if (!readAt(file, 0, &dos, sizeof dos) || !readAt(file, dos.e_lfanew, &header, sizeof header))
        return false;
    std::vector<IMAGE_SECTION_HEADER> sections(header.FileHeader.NumberOfSections);
    if (!readAt(file,
                dos.e_lfanew + qint64(offsetof(IMAGE_NT_HEADERS, OptionalHeader)) +
                    header.FileHeader.SizeOfOptionalHeader,
                sections.data(), sections.size() * sizeof(IMAGE_SECTION_HEADER)))
        return false;
    const qint64 size = file.size();
    if (!std::all_of(sections.cbegin(), sections.cend(), [size](const auto& section) {
            return qint64(section.PointerToRawData) + section.SizeOfRawData <= size;
        }))
        return false;

    const DWORD imports =
        header.OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress;
    const auto section =
        std::find_if(sections.cbegin(), sections.cend(), [imports](const auto& each) {
            return imports >= each.VirtualAddress &&
                   imports - each.VirtualAddress < each.SizeOfRawData;
        });
    IMAGE_IMPORT_DESCRIPTOR first;
    return section != sections.cend() &&
           readAt(file, qint64(section->PointerToRawData) + (imports - section->VirtualAddress),
                  &first, sizeof first) &&
           first.Name != 0;
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
    // Whoever opens a pipe would wait for a writer.
    const int file = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (file < 0)
        return false;
    const bool isComplete = holdsItsSegments(file);
    ::close(file);
    return isComplete;
#elif defined(Q_OS_WIN)
    QFile file(path);
    return file.open(QIODevice::ReadOnly) && holdsItsSections(file);
#else
    Q_UNUSED(path)
    return true;
#endif
}

} // namespace App
