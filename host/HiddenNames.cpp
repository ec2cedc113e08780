#include "HiddenNames.h"

#include <QFile>

#include <filesystem>

namespace Host {

QStringList undecodableFiles(const QString& directory, const QString& suffix)
{
    QStringList files;
#ifdef Q_OS_UNIX
    using Iterator = std::filesystem::recursive_directory_iterator;
    const QString ending = QLatin1Char('.') + suffix;
    std::error_code error;
    Iterator entry(QFile::encodeName(directory).toStdString(),
                   std::filesystem::directory_options::skip_permission_denied, error);
    for (; !error && entry != Iterator(); entry.increment(error)) {
        const QByteArray path = QByteArray::fromStdString(entry->path().native());
        const QString shown = QFile::decodeName(path);
        std::error_code unknown;
        if (shown.endsWith(ending, Qt::CaseInsensitive) && QFile::encodeName(shown) != path &&
            entry->is_regular_file(unknown))
            files.append(shown);
    }
#else
    Q_UNUSED(directory)
    Q_UNUSED(suffix)
#endif
    return files;
}

} // namespace Host
