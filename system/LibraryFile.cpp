#include <system/LibraryFile.h>

#include <QFile>

#include <algorithm>
#include <cstring>
#include <string_view>
#include <vector>

#ifdef Q_OF_ELF
#include <cerrno>
#include <fcntl.h>
#include <link.h>
#include <sys/stat.h>
#include <unistd.h>
#endif
#ifdef Q_OS_WIN
#include <QFileInfo>

#include <qt_windows.h>
#endif

namespace System {

namespace {

const QLatin1String notRegular("it is not a regular file");
const QLatin1String notLibrary("it is not a library for this system");
const QLatin1String damaged("it is truncated or damaged");

QString readError(const QString& reason)
{
    return QLatin1String("it cannot be read: ") + reason;
}

/// Returns true if the part is within a file of this size. Does not overflow.
bool isWithin(quint64 size, quint64 offset, quint64 length)
{
    return offset <= size && length <= size - offset;
}

#ifdef Q_OF_ELF

bool readAt(int file, quint64 offset, void* data, std::size_t size)
{
    return ::pread(file, data, size, static_cast<off_t>(offset)) == static_cast<ssize_t>(size);
}

bool containsSegments(int file, quint64 size, const ElfW(Ehdr) & header)
{
    std::vector<ElfW(Phdr)> segments(header.e_phnum);
    return header.e_phentsize == sizeof(ElfW(Phdr)) &&
           readAt(file, header.e_phoff, segments.data(), segments.size() * sizeof(ElfW(Phdr))) &&
           std::all_of(segments.cbegin(), segments.cend(), [size](const ElfW(Phdr) & segment) {
               return isWithin(size, segment.p_offset, segment.p_filesz);
           });
}

/// Checks the section table too, in which Qt looks up its metadata by name.
bool containsSections(int file, quint64 size, const ElfW(Ehdr) & header)
{
    if (header.e_shnum == 0)
        return header.e_shoff == 0;
    std::vector<ElfW(Shdr)> sections(header.e_shnum);
    if (header.e_shentsize != sizeof(ElfW(Shdr)) || header.e_shstrndx >= header.e_shnum ||
        !readAt(file, header.e_shoff, sections.data(), sections.size() * sizeof(ElfW(Shdr))))
        return false;
    const ElfW(Shdr)& names = sections[header.e_shstrndx];
    char end = 0;
    return names.sh_type == SHT_STRTAB && names.sh_size != 0 &&
           std::all_of(sections.cbegin(), sections.cend(),
                       [size, &names](const ElfW(Shdr) & section) {
                           return section.sh_name < names.sh_size &&
                                  (section.sh_type == SHT_NOBITS ||
                                   isWithin(size, section.sh_offset, section.sh_size));
                       }) &&
           readAt(file, names.sh_offset + names.sh_size - 1, &end, 1) && end == '\0';
}

QString fileError(int file, quint64 size)
{
    constexpr int ownClass = sizeof(void*) == 8 ? ELFCLASS64 : ELFCLASS32;
    constexpr int ownByteOrder = Q_BYTE_ORDER == Q_LITTLE_ENDIAN ? ELFDATA2LSB : ELFDATA2MSB;
    ElfW(Ehdr) header;
    const ssize_t count = ::pread(file, &header, sizeof header, 0);
    if (count < 0)
        return readError(qt_error_string(errno));
    if (count < SELFMAG || std::memcmp(header.e_ident, ELFMAG, SELFMAG) != 0)
        return notLibrary;
    if (count < static_cast<ssize_t>(sizeof header))
        return damaged;
    if (header.e_ident[EI_CLASS] != ownClass || header.e_ident[EI_DATA] != ownByteOrder)
        return notLibrary;
    return containsSegments(file, size, header) && containsSections(file, size, header) ? QString()
                                                                                        : damaged;
}

#endif

#ifdef Q_OS_WIN

bool readAt(QFile& file, qint64 offset, void* data, std::size_t size)
{
    const auto length = static_cast<qint64>(size);
    return file.seek(offset) && file.read(static_cast<char*>(data), length) == length;
}

/// Returns true if the file contains all its sections and the name of an imported DLL. If the end
/// of a file is missing or consists of zeros, loading it crashes.
bool containsSections(QFile& file, const IMAGE_DOS_HEADER& dos)
{
    IMAGE_NT_HEADERS header;
    if (!readAt(file, dos.e_lfanew, &header, sizeof header) ||
        header.Signature != IMAGE_NT_SIGNATURE)
        return false;
    std::vector<IMAGE_SECTION_HEADER> sections(header.FileHeader.NumberOfSections);
    if (!readAt(file,
                dos.e_lfanew + qint64(offsetof(IMAGE_NT_HEADERS, OptionalHeader)) +
                    header.FileHeader.SizeOfOptionalHeader,
                sections.data(), sections.size() * sizeof(IMAGE_SECTION_HEADER)))
        return false;
    const auto size = static_cast<quint64>(file.size());
    if (!std::all_of(sections.cbegin(), sections.cend(), [size](const auto& section) {
            return isWithin(size, section.PointerToRawData, section.SizeOfRawData);
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

#ifdef Q_OF_ELF

QString libraryFileError(const QString& path)
{
    // Plain system calls: QFile would double the time that this check adds to loading a library.
    const QByteArray name = QFile::encodeName(path);
    struct stat status;
    if (::stat(name.constData(), &status) != 0)
        return readError(qt_error_string(errno));
    if (!S_ISREG(status.st_mode))
        return notRegular;
    const int file = ::open(name.constData(), O_RDONLY | O_CLOEXEC);
    if (file < 0)
        return readError(qt_error_string(errno));
    QString error = fileError(file, static_cast<quint64>(status.st_size));
    ::close(file);
    return error;
}

#elif defined(Q_OS_WIN)

QString libraryFileError(const QString& path)
{
    const QFileInfo info(path);
    if (info.exists() && !info.isFile())
        return notRegular;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return readError(file.errorString());
    IMAGE_DOS_HEADER dos;
    if (!readAt(file, 0, &dos.e_magic, sizeof dos.e_magic) || dos.e_magic != IMAGE_DOS_SIGNATURE)
        return notLibrary;
    return readAt(file, 0, &dos, sizeof dos) && containsSections(file, dos) ? QString() : damaged;
}

#else

QString libraryFileError(const QString&)
{
    return QString();
}

#endif

bool fileContains(const QString& path, const char* text)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    // Mapped, since the file may be large.
    const auto* const content = reinterpret_cast<const char*>(file.map(0, file.size()));
    const std::string_view view(content, content ? static_cast<std::size_t>(file.size()) : 0);
    return view.find(text) != std::string_view::npos;
}

} // namespace System
