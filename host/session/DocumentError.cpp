#include "session/DocumentError.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QString>

namespace Host {

QString documentError(const QString& path)
{
    const QFileInfo info(path);
    if (!info.exists())
        return QStringLiteral("there is no such file");
    if (info.isDir())
        return QStringLiteral("it is a directory");
    if (!info.isFile())
        return QStringLiteral("it is not a regular file");

    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return file.errorString();
    const QByteArray text = file.readAll();
    if (file.error() != QFile::NoError)
        return file.errorString();
    if (text.isEmpty() && info.size() > 0)
        return QStringLiteral("it is too large");
    if (text.isEmpty())
        return QStringLiteral("it is empty");
    QJsonParseError error;
    QJsonDocument::fromJson(text, &error);
    if (error.error != QJsonParseError::NoError) {
        return QStringLiteral("it is not a document: invalid JSON at byte %1: %2")
            .arg(error.offset)
            .arg(error.errorString());
    }
    return QStringLiteral(
        "it is not a document of this program: \"format\", \"version\" or \"printCount\" has an "
        "unexpected value, or one of them or of the counts is duplicate");
}

} // namespace Host
