#include <system/LibraryFile.h>

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cstring>
#include <string_view>
#include <vector>

#ifdef Q_OS_WIN
#include <qt_windows.h>
#else
#include <link.h>
#include <unistd.h>
#endif

namespace System {

namespace {

/// Returns true if the part is within a file of this size. Does not overflow.
bool isWithin(quint64 size, quint64 offset, quint64 length)
{
    return offset <= size && length <= size - offset;
}

/// Reads objects. Returns false if the file does not contain them.
template <typename T>
bool readAt(QFile& file, quint64 offset, T* objects, std::size_t count = 1)
{
    const auto length = static_cast<qint64>(count) * static_cast<qint64>(sizeof(T));
#ifdef Q_OS_WIN
    return file.seek(static_cast<qint64>(offset)) &&
           file.read(reinterpret_cast<char*>(objects), length) == length;
#else
    // QFile would double the time that this check adds to loading a library.
    return ::pread(file.handle(), objects, static_cast<std::size_t>(length),
                   static_cast<off_t>(offset)) == length;
#endif
}

#ifdef Q_OS_WIN

using FileHeader = IMAGE_DOS_HEADER;
/// The beginning of a library for this system.
constexpr char magic[] = {'M', 'Z'};

/// Checks the sections, and the name of an imported DLL. If the end of a file is missing or
/// consists of zeros, loading it crashes.
bool isComplete(QFile& file, quint64 size, const FileHeader& dos)
{
    const quint64 start = static_cast<DWORD>(dos.e_lfanew);
    IMAGE_NT_HEADERS header;
    if (!readAt(file, start, &header) || header.Signature != IMAGE_NT_SIGNATURE)
        return false;
    std::vector<IMAGE_SECTION_HEADER> sections(header.FileHeader.NumberOfSections);
    if (!readAt(file,
                start + offsetof(IMAGE_NT_HEADERS, OptionalHeader) +
                    header.FileHeader.SizeOfOptionalHeader,
                sections.data(), sections.size()) ||
        !std::all_of(sections.cbegin(), sections.cend(), [size](const auto& section) {
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
           readAt(file, quint64(section->PointerToRawData) + (imports - section->VirtualAddress),
                  &first) &&
           first.Name != 0;
}

#else

using FileHeader = ElfW(Ehdr);
/// The beginning of a library for this system.
constexpr char magic[] = {ELFMAG0,
                          ELFMAG1,
                          ELFMAG2,
                          ELFMAG3,
                          sizeof(void*) == 8 ? ELFCLASS64 : ELFCLASS32,
                          Q_BYTE_ORDER == Q_LITTLE_ENDIAN ? ELFDATA2LSB : ELFDATA2MSB};

/// Checks the segments, and the sections, among which Qt looks up its metadata by name.
bool isComplete(QFile& file, quint64 size, const FileHeader& header)
{
    std::vector<ElfW(Phdr)> segments(header.e_phnum);
    if (header.e_phentsize != sizeof(ElfW(Phdr)) ||
        !readAt(file, header.e_phoff, segments.data(), segments.size()) ||
        !std::all_of(segments.cbegin(), segments.cend(), [size](const ElfW(Phdr) & segment) {
            return isWithin(size, segment.p_offset, segment.p_filesz);
        }))
        return false;

    if (header.e_shnum == 0)
        return header.e_shoff == 0;
    std::vector<ElfW(Shdr)> sections(header.e_shnum);
    if (header.e_shentsize != sizeof(ElfW(Shdr)) || header.e_shstrndx >= header.e_shnum ||
        !readAt(file, header.e_shoff, sections.data(), sections.size()))
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
           readAt(file, names.sh_offset + names.sh_size - 1, &end) && end == '\0';
}

#endif

} // namespace

QString libraryFileError(const QString& path)
{
    const QFileInfo info(path);
    if (!info.isFile() && info.exists())
        return QStringLiteral("it is not a regular file");
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return QLatin1String("it cannot be read: ") + file.errorString();
    FileHeader header;
    if (!readAt(file, 0, &header) || std::memcmp(&header, magic, sizeof magic) != 0)
        return QStringLiteral("it is not a library for this system");
    return isComplete(file, static_cast<quint64>(info.size()), header)
               ? QString()
               : QStringLiteral("it is truncated or damaged");
}

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
