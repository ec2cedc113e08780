#include <ovdoc/Document.h>

#include <ovdoc/DocObject.h>
#include <ovdoc/RawJsonObject.h>
#include <ovdoc/Storage.h>

#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QSaveFile>

#include <limits>
#include <optional>
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

/// Returns the value of a member, undefined if it is missing; nullopt if it is duplicate.
std::optional<QJsonValue> readMember(const RawJsonObject& object, std::string_view name)
{
    if (object.hasDuplicate(name))
        return std::nullopt;
    const QByteArray text = object.value(name);
    return text.isEmpty() ? QJsonValue(QJsonValue::Undefined)
                          : QJsonDocument::fromJson('[' + text + ']').array().at(0);
}

/// Returns 0 if the member is missing, nullopt if it is not a 32-bit integer or is duplicate.
std::optional<int> readCount(const RawJsonObject& object, std::string_view name)
{
    const std::optional<QJsonValue> value = readMember(object, name);
    if (value && value->isUndefined())
        return 0;
    if (!value || !value->isDouble())
        return std::nullopt;
    const double number = value->toDouble();
    using Limits = std::numeric_limits<int>;
    if (!(number >= Limits::min() && number <= Limits::max()))
        return std::nullopt;
    const int count = static_cast<int>(number);
    if (count != number)
        return std::nullopt;
    return count;
}

std::optional<Laser::PrintCountParams> readPrintCount(const RawJsonObject& document)
{
    const std::optional<QJsonValue> value = readMember(document, printCountKey);
    if (!value || (!value->isUndefined() && !value->isObject()))
        return std::nullopt;
    const RawJsonObject members(document.value(printCountKey));
    const std::optional<int> finished = readCount(members, finishedKey);
    const std::optional<int> target = readCount(members, targetKey);
    if (!finished || !target)
        return std::nullopt;

    Laser::PrintCountParams printCount;
    printCount.setFinishedCount(*finished);
    printCount.setTargetCount(*target);
    return printCount;
}

bool isDocument(const RawJsonObject& document)
{
    return readMember(document, formatKey) == QJsonValue(formatName) &&
           readMember(document, versionKey) == QJsonValue(formatVersion);
}

} // namespace

struct Document::Private
{
    std::unique_ptr<Storage> storage;
    QString filePath;
    /// The JSON object that was read, whose unknown members `save` keeps.
    QByteArray text = R"({"format": "ovdoc", "version": 1})";
};

Document::Document(Storage* storage) : d(std::make_unique<Private>())
{
    d->storage.reset(storage);
}

Document::~Document() = default;

bool Document::open(const QString& path)
{
    QFile file(path);
    if (!QFileInfo(file).isFile() || !file.open(QIODevice::ReadOnly))
        return false;

    const QByteArray text = file.readAll();
    if (!QJsonDocument::fromJson(text).isObject())
        return false;
    // Both reading and saving use RawJsonObject, so that they agree about the names of members.
    const RawJsonObject document(text);
    if (!isDocument(document))
        return false;
    const std::optional<Laser::PrintCountParams> printCount = readPrintCount(document);
    if (!printCount)
        return false;

    d->filePath = path;
    d->text = text;
    d->storage->queryDocObjectDirect()->setPrintCountData(*printCount);
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

    QSaveFile file(d->filePath);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    const QByteArray text = document.toIndented();
    // QSaveFile would commit a file that a full disk has truncated.
    if (file.write(text) != text.size() || !file.flush())
        return false;
    return file.commit();
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
