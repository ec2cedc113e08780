#include "Fuzz.h"

#include <support/Files.h>
#include <support/Literals.h>

#include <system/LibraryFile.h>

#include <QJsonObject>
#include <QPluginLoader>

#include <fuzzer/FuzzedDataProvider.h>

#include <cstring>
#include <utility>
#include <vector>

#include <link.h>

namespace {

/// The content of a plug-in file, and the offset and length of each part that `libraryFileError`
/// and Qt read.
struct Plugin
{
    const QByteArray file = contentOf(QStringLiteral(FUZZED_PLUGIN));
    std::vector<std::pair<int, int>> parts;

    Plugin()
    {
        const auto* header = reinterpret_cast<const ElfW(Ehdr)*>(file.constData());
        const auto* section =
            reinterpret_cast<const ElfW(Shdr)*>(file.constData() + header->e_shoff);
        const ElfW(Shdr)& names = section[header->e_shstrndx];
        add(0, sizeof *header);
        add(header->e_phoff, header->e_phnum * sizeof(ElfW(Phdr)));
        add(header->e_shoff, header->e_shnum * sizeof *section);
        add(names.sh_offset, names.sh_size);
        for (int i = 0; i < header->e_shnum; ++i) {
            if (qstrncmp(file.constData() + names.sh_offset + section[i].sh_name, ".qtmetadata",
                         11) == 0) {
                add(section[i].sh_offset, section[i].sh_size);
                add(header->e_shoff + std::size_t(i) * sizeof *section, sizeof *section);
            }
        }
        add(0, std::size_t(file.size()));
    }

    void add(std::size_t offset, std::size_t size) { parts.emplace_back(int(offset), int(size)); }
};

} // namespace

/// Changes and truncates a plug-in. If `libraryFileError` accepts the file, Qt reads its metadata.
/// The file is never loaded, since its code may do anything.
extern "C" int LLVMFuzzerTestOneInput(const uchar* data, std::size_t size)
{
    static const Plugin plugin;
    FuzzedDataProvider changes(data, size);
    QByteArray file = plugin.file;
    if (changes.ConsumeBool())
        file.truncate(changes.ConsumeIntegralInRange(0, int(file.size())));
    const bool isOnlyTruncated = changes.remaining_bytes() == 0 && file != plugin.file;
    while (changes.remaining_bytes() > 0 && !file.isEmpty()) {
        const auto [offset, length] = plugin.parts.at(
            changes.ConsumeIntegralInRange<std::size_t>(0, plugin.parts.size() - 1));
        const int at = offset + changes.ConsumeIntegralInRange(0, length - 1);
        const std::string bytes =
            changes.ConsumeBytesAsString(changes.ConsumeIntegralInRange<std::size_t>(1, 8));
        if (at < file.size())
            file.replace(at, int(bytes.size()), bytes.data(), int(bytes.size()));
    }

    const QString path = fuzzedFile("plugin.dll");
    writeFile(path, file);
    const bool passed = System::libraryFileError(path).isEmpty();
    require(!passed || !isOnlyTruncated, "a truncated plug-in is refused");
    const bool isPlugin = passed && !QPluginLoader(path).metaData().isEmpty();
    require(isPlugin || file != plugin.file, "an undamaged plug-in is accepted");
    return 0;
}
