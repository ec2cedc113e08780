#include <ovdoc/Document.h>

#include <ovdoc/DocObject.h>
#include <ovdoc/RawJsonObject.h>
#include <ovdoc/Storage.h>

#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QSaveFile>

#include <string_view>

namespace Doc {

namespace {

constexpr std::string_view formatKey = "format";
const QLatin1String formatName("ovdoc");
constexpr std::string_view versionKey = "version";
constexpr int formatVersion = 1;
constexpr std::string_view printCountKey = "printCount";
constexpr std::string_view finishedKey = "finished";
constexpr std::string_view targetKey = "target";

/// Returns the value of a member, undefined if it is missing, null if it is duplicate.
QJsonValue readMember(const RawJsonObject& object, std::string_view name)
{
    if (object.hasDuplicate(name))
        return {};
    const QByteArray text = object.value(name);
    return text.isEmpty() ? QJsonValue(QJsonValue::Undefined)
                          : QJsonDocument::fromJson('[' + text + ']').array().at(0);
}

QString memberError(const RawJsonObject& object, std::string_view name)
{
    const char* const error = object.hasDuplicate(name)      ? "is duplicate"
                              : object.value(name).isEmpty() ? "is missing"
                                                             : "has an unexpected value";
    return QStringLiteral("it is not a valid document: \"%1\" %2")
        .arg(QLatin1String(name.data()), QLatin1String(error));
}

/// Returns false if the value is neither missing nor a 32-bit integer.
bool readCount(const QJsonValue& value, int& count)
{
    count = value.toInt(0);
    return value.isUndefined() || count == value.toInt(1);
}

/// Reads the counts. Returns the reason if the document is not valid.
QString readDocument(const RawJsonObject& document, Laser::PrintCountParams& printCount)
{
    if (readMember(document, formatKey) != QJsonValue(formatName))
        return memberError(document, formatKey);
    if (readMember(document, versionKey) != QJsonValue(formatVersion))
        return memberError(document, versionKey);
    const QJsonValue counts = readMember(document, printCountKey);
    if (!counts.isUndefined() && !counts.isObject())
        return memberError(document, printCountKey);

    const RawJsonObject members(document.value(printCountKey));
    int count = 0;
    if (!readCount(readMember(members, finishedKey), count))
        return memberError(members, finishedKey);
    printCount.setFinishedCount(count);
    if (!readCount(readMember(members, targetKey), count))
        return memberError(members, targetKey);
    printCount.setTargetCount(count);
    return {};
}

/// Returns the reason of a failed file operation. On Windows, the system ends it with a full stop.
QString fileError(const QFileDevice& file)
{
    const QString error = file.errorString();
    return error.endsWith(QLatin1Char('.')) ? error.chopped(1) : error;
}

/// Reads a regular file, since others may block. Returns the reason if that fails.
QString readFile(const QString& path, QByteArray& text)
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
        return fileError(file);
    text = file.readAll();
    if (file.error() != QFile::NoError)
        return fileError(file);
    if (text.isEmpty())
        return info.size() > 0 ? QStringLiteral("it is too large") : QStringLiteral("it is empty");
    return {};
}

QString jsonError(const QByteArray& text)
{
    QJsonParseError error;
    const QJsonDocument json = QJsonDocument::fromJson(text, &error);
    if (error.error != QJsonParseError::NoError) {
        const QString before = QString::fromUtf8(text.left(error.offset));
        return QStringLiteral("it is not a valid document: invalid JSON at line %1, column %2: %3")
            .arg(before.count(QLatin1Char('\n')) + 1)
            .arg(before.size() - before.lastIndexOf(QLatin1Char('\n')))
            .arg(error.errorString());
    }
    return json.isObject() ? QString()
                           : QStringLiteral("it is not a valid document: not a JSON object");
}

/// Writes to an unbuffered device. If the disk is full, the first call writes a part of the data,
/// and only the next one fails with the reason.
bool writeAll(QIODevice& device, const QByteArray& data)
{
    qint64 written = 0;
    while (written < data.size()) {
        const qint64 count = device.write(data.constData() + written, data.size() - written);
        if (count <= 0)
            return false;
        written += count;
    }
    return true;
}

} // namespace

struct Document::Private
{
    std::unique_ptr<Storage> storage;
    QString filePath;
    /// The JSON object that was read, whose unknown members `save` keeps.
    QByteArray text = R"({"format": "ovdoc", "version": 1})";
    QString errorString;
};

Document::Document(Storage* storage) : d(std::make_unique<Private>())
{
    d->storage.reset(storage);
}

Document::~Document() = default;

bool Document::open(const QString& path)
{
    QByteArray text;
    d->errorString = readFile(path, text);
    if (d->errorString.isEmpty())
        d->errorString = jsonError(text);
    // Both reading and saving use RawJsonObject, so that they agree about the names of members.
    Laser::PrintCountParams printCount;
    if (d->errorString.isEmpty())
        d->errorString = readDocument(RawJsonObject(text), printCount);
    if (!d->errorString.isEmpty())
        return false;

    d->filePath = path;
    d->text = text;
    d->storage->queryDocObjectDirect()->setPrintCountData(printCount);
    return true;
}

bool Document::save() const
{
    const Laser::PrintCountParams counts = d->storage->queryDocObjectDirect()->printCountData();
    RawJsonObject document(d->text);
    RawJsonObject printCount(document.value(printCountKey));
    printCount.setValue(finishedKey, QByteArray::number(counts.finishedCount()));
    printCount.setValue(targetKey, QByteArray::number(counts.targetCount()));
    document.setValue(printCountKey, printCount.toCompact());

    const QByteArray text = document.toIndented();
    QSaveFile file(d->filePath);
    const bool isSaved = file.open(QIODevice::WriteOnly | QIODevice::Unbuffered) &&
                         writeAll(file, text) && file.commit();
    d->errorString = isSaved ? QString() : fileError(file);
    return isSaved;
}

QString Document::errorString() const
{
    return d->errorString;
}

QString Document::filePath() const
{
    return d->filePath;
}

void Document::setFilePath(const QString& path)
{
    d->filePath = path;
}

Storage* Document::storage() const
{
    return d->storage.get();
}

} // namespace Doc
