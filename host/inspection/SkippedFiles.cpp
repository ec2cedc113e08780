#include "inspection/SkippedFiles.h"

#include "process/Output.h"

#include <QDirIterator>
#include <QLibrary>

namespace Host {

QStringList skippedFiles(const QString& directory, const QString& suffix)
{
    QStringList warnings;
    const auto check = [&](const QFileInfo& entry) {
        QString reason;
        if (entry.isDir() && !entry.isReadable())
            reason = QStringLiteral("the directory cannot be read");
        else if (!entry.exists())
            reason = QStringLiteral("it is a link to a missing file");
        else if (!entry.isDir() && !entry.isFile())
            reason = QStringLiteral("it is not a regular file");
        else if (entry.isFile() && QLibrary::isLibrary(entry.fileName()) &&
                 entry.suffix().compare(suffix, Qt::CaseInsensitive) != 0)
            reason = QStringLiteral("the suffix of plug-in files is .%1").arg(suffix);
        if (!reason.isEmpty())
            warnings << QStringLiteral("%1 is skipped: %2").arg(quoted(entry.filePath()), reason);
    };

    if (directory.isEmpty())
        return warnings;
    check(QFileInfo(directory));
    QDirIterator entries(directory, QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot,
                         QDirIterator::Subdirectories | QDirIterator::FollowSymlinks);
    while (entries.hasNext())
        check(QFileInfo(entries.next()));
    warnings.sort();
    return warnings;
}

} // namespace Host
