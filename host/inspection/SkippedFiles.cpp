#include "inspection/SkippedFiles.h"

#include "process/Output.h"

#include <QFile>

#include <filesystem>

namespace Host {

#ifdef Q_OS_UNIX

QStringList skippedFiles(const QString& directory, const QString& suffix)
{
    namespace fs = std::filesystem;
    QStringList sentences;
    const auto add = [&sentences](const QString& path, const QString& reason) {
        sentences << QStringLiteral("%1 is passed over: %2").arg(quoted(path), reason);
    };
    const auto addUnreadable = [&add](const fs::path& path) {
        std::error_code error;
        [[maybe_unused]] const bool isEmpty = fs::is_empty(path, error);
        if (error) {
            add(QFile::decodeName(path.c_str()),
                QStringLiteral("it cannot be read: %1")
                    .arg(QString::fromLocal8Bit(error.message().c_str())));
        }
    };

    const fs::path root = QFile::encodeName(directory).toStdString();
    if (root.empty())
        return sentences;
    addUnreadable(root);
    const QString ending = QLatin1Char('.') + suffix;
    std::error_code error;
    fs::recursive_directory_iterator entry(root, fs::directory_options::skip_permission_denied,
                                           error);
    for (; !error && entry != fs::recursive_directory_iterator(); entry.increment(error)) {
        const QByteArray path = QByteArray::fromStdString(entry->path().native());
        const QString shown = QFile::decodeName(path);
        std::error_code unknown;
        if (entry->is_directory(unknown))
            addUnreadable(entry->path());
        else if (shown.endsWith(ending, Qt::CaseInsensitive) && QFile::encodeName(shown) != path &&
                 entry->is_regular_file(unknown))
            add(shown, QStringLiteral("its name is no UTF-8"));
    }
    return sentences;
}

#else

QStringList skippedFiles(const QString&, const QString&)
{
    return {};
}

#endif

} // namespace Host
