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

namespace Doc {

namespace {

const QLatin1String formatKey("format");
const QLatin1String formatName("ovdoc");
const QLatin1String versionKey("version");
constexpr int formatVersion = 1;
const QLatin1String printCountKey("printCount");
const QLatin1String finishedKey("finished");
const QLatin1String targetKey("target");

/// What a member holds, undefined where it is missing; nothing where it is there twice.
std::optional<QJsonValue> readMember(const JsonText& object, QLatin1String name)
{
    if (object.namesTwice(name))
        return std::nullopt;
    const QByteArray text = object.value(name);
    return text.isEmpty() ? QJsonValue(QJsonValue::Undefined)
                          : QJsonDocument::fromJson('[' + text + ']').array().at(0);
}

/// 0 for a missing member, nothing for one that is no 32-bit integer.
std::optional<int> readCount(const JsonText& object, QLatin1String name)
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

std::optional<Laser::PrintCountParams> readPrintCount(const JsonText& document)
{
    const std::optional<QJsonValue> value = readMember(document, printCountKey);
    if (!value || (!value->isUndefined() && !value->isObject()))
        return std::nullopt;
    const JsonText members(document.value(printCountKey));
    const std::optional<int> finished = readCount(members, finishedKey);
    const std::optional<int> target = readCount(members, targetKey);
    if (!finished || !target)
        return std::nullopt;

    Laser::PrintCountParams printCount;
    printCount.setFinishedCount(*finished);
    printCount.setTargetCount(*target);
    return printCount;
}

bool isDocument(const JsonText& document)
{
    return readMember(document, formatKey) == QJsonValue(formatName) &&
           readMember(document, versionKey) == QJsonValue(formatVersion);
}

} // namespace

struct Document::Private
{
    std::unique_ptr<Storage> storage;
    QString filePath;
    /// The JSON object that was read, for the members that only others know.
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
    // Read by what will write it again, so that the two agree on what a name stands for.
    const JsonText document(text);
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
    JsonText document(d->text);
    JsonText printCount(document.value(printCountKey));
    printCount.setValue(finishedKey, QByteArray::number(counts.finishedCount()));
    printCount.setValue(targetKey, QByteArray::number(counts.targetCount()));
    document.setValue(printCountKey, printCount.toLine());

    QSaveFile file(d->filePath);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    const QByteArray text = document.toLines();
    // Qt would commit what a full disk has cut short.
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
