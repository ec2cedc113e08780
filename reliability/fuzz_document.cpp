#include "Fuzz.h"

#include <support/Files.h>
#include <support/Literals.h>

#include <ovdoc/DocObject.h>
#include <ovdoc/Document.h>
#include <ovdoc/Storage.h>

#include <QJsonDocument>
#include <QJsonObject>

namespace {

/// Returns the members of a document except the counts.
QJsonObject otherMembersOf(const QByteArray& text)
{
    QJsonObject object = QJsonDocument::fromJson(text).object();
    QJsonObject printCount = object.take("printCount"_s).toObject();
    printCount.remove("finished"_s);
    printCount.remove("target"_s);
    object.insert("printCount"_s, printCount);
    return object;
}

/// Returns the number of members of all objects, including nested ones.
int memberCount(const QByteArray& text)
{
    int count = 0;
    bool inString = false;
    for (int i = 0; i < text.size(); ++i) {
        if (inString && text.at(i) == '\\')
            ++i;
        else if (text.at(i) == '"')
            inString = !inString;
        else if (!inString && text.at(i) == ':')
            ++count;
    }
    return count;
}

/// Returns true if Qt reads all members: it drops duplicates, and byte order marks in names.
bool isReadLosslessly(const QByteArray& text)
{
    return !text.contains("\xef\xbb\xbf") &&
           memberCount(text) == memberCount(QJsonDocument::fromJson(text).toJson());
}

} // namespace

/// Qt's JSON parser leaks a dropped duplicate.
extern "C" const char* __lsan_default_suppressions()
{
    return "leak:libQt5Core";
}

/// Opens any input as a document. If that succeeds, saving it must preserve it.
extern "C" int LLVMFuzzerTestOneInput(const uchar* data, std::size_t size)
{
    const QString path = fuzzedFile("given.ovdoc");
    const QString copy = fuzzedFile("saved.ovdoc");
    const auto text = QByteArray(reinterpret_cast<const char*>(data), int(size));
    writeFile(path, text);
    Doc::Document document(new Doc::Storage);
    if (!document.open(path))
        return 0;

    document.setFilePath(copy);
    require(document.save(), "a document can be saved");
    const QByteArray saved = contentOf(copy);
    if (isReadLosslessly(text))
        require(otherMembersOf(saved) == otherMembersOf(text), "unknown members survive");

    Doc::Document reopened(new Doc::Storage);
    require(reopened.open(copy), "a saved document can be opened");
    const Laser::PrintCountParams counts =
        document.storage()->queryDocObjectDirect()->printCountData();
    const Laser::PrintCountParams read =
        reopened.storage()->queryDocObjectDirect()->printCountData();
    require(read.finishedCount() == counts.finishedCount() &&
                read.targetCount() == counts.targetCount(),
            "the counts survive");
    require(reopened.save() && contentOf(copy) == saved, "saving again changes nothing");
    return 0;
}
