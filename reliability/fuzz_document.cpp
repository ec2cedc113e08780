#include "Fuzz.h"

#include <support/Files.h>
#include <support/Literals.h>

#include <ovdoc/DocObject.h>
#include <ovdoc/Document.h>
#include <ovdoc/Storage.h>

#include <QJsonDocument>
#include <QJsonObject>

namespace {

/// What a file holds beside the counts.
QJsonObject othersOf(const QByteArray& text)
{
    QJsonObject object = QJsonDocument::fromJson(text).object();
    QJsonObject printCount = object.take("printCount"_s).toObject();
    printCount.remove("finished"_s);
    printCount.remove("target"_s);
    object.insert("printCount"_s, printCount);
    return object;
}

/// How many members are named, in all objects of a text.
int namesIn(const QByteArray& text)
{
    int names = 0;
    bool inString = false;
    for (int i = 0; i < text.size(); ++i) {
        if (inString && text.at(i) == '\\')
            ++i;
        else if (text.at(i) == '"')
            inString = !inString;
        else if (!inString && text.at(i) == ':')
            ++names;
    }
    return names;
}

/// Whether Qt takes a text as it is: of two members of one name it takes either, and it leaves byte
/// order marks out of names.
bool isPlain(const QByteArray& text)
{
    return !text.contains("\xef\xbb\xbf") &&
           namesIn(text) == namesIn(QJsonDocument::fromJson(text).toJson());
}

} // namespace

/// Qt's reader leaks the one that it drops of two members of one name.
extern "C" const char* __lsan_default_suppressions()
{
    return "leak:libQt5Core";
}

/// Anything is opened as a file; what is a document lives through being saved.
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
    if (isPlain(text))
        require(othersOf(saved) == othersOf(text), "what only others know survives");

    Doc::Document again(new Doc::Storage);
    require(again.open(copy), "what was saved can be opened");
    const Laser::PrintCountParams counts =
        document.storage()->queryDocObjectDirect()->printCountData();
    const Laser::PrintCountParams read = again.storage()->queryDocObjectDirect()->printCountData();
    require(read.finishedCount() == counts.finishedCount() &&
                read.targetCount() == counts.targetCount(),
            "the counts survive");
    require(again.save() && contentOf(copy) == saved, "saving again changes nothing");
    return 0;
}
