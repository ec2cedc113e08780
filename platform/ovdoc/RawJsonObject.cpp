#include <ovdoc/RawJsonObject.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QString>

#include <algorithm>

namespace Doc {

namespace {

/// The place of the first character from `start` on that ends a name, a value or the object.
QByteArray::size_type endOfPart(const QByteArray& json, QByteArray::size_type start)
{
    int depth = 0;
    bool inString = false;
    for (auto i = start; i < json.size(); ++i) {
        const char character = json.at(i);
        if (inString) {
            if (character == '\\')
                ++i;
            else if (character == '"')
                inString = false;
            continue;
        }
        switch (character) {
        case '"':
            inString = true;
            break;
        case '{':
        case '[':
            ++depth;
            break;
        case ':':
        case ',':
            if (depth == 0)
                return i;
            break;
        case '}':
        case ']':
            if (depth == 0)
                return i;
            --depth;
            break;
        }
    }
    return json.size();
}

/// Whether a string in its quotes, with whatever escapes, is `name`.
bool isName(const QByteArray& string, QLatin1String name)
{
    // Qt's reader would skip a byte order mark, which makes another name of it.
    if (!string.contains('\\'))
        return string == '"' + QByteArray(name.data(), name.size()) + '"';
    return QJsonDocument::fromJson('[' + string + ']').array().at(0).toString() == name;
}

template <typename Members>
auto find(Members& members, QLatin1String name)
{
    return std::find_if(members.begin(), members.end(),
                        [name](const auto& member) { return isName(member.name, name); });
}

} // namespace

JsonText::JsonText(const QByteArray& object)
{
    auto start = object.indexOf('{') + 1;
    while (start < object.size()) {
        const auto colon = endOfPart(object, start);
        if (colon >= object.size() || object.at(colon) != ':')
            return;
        const auto end = endOfPart(object, colon + 1);
        _members.push_back({object.mid(start, colon - start).trimmed(),
                            object.mid(colon + 1, end - colon - 1).trimmed()});
        start = end + 1;
    }
}

bool JsonText::namesTwice(QLatin1String name) const
{
    return std::count_if(_members.begin(), _members.end(),
                         [name](const Member& member) { return isName(member.name, name); }) > 1;
}

QByteArray JsonText::value(QLatin1String name) const
{
    const auto member = find(_members, name);
    return member == _members.end() ? QByteArray() : member->value;
}

void JsonText::setValue(QLatin1String name, const QByteArray& value)
{
    const auto member = find(_members, name);
    if (member == _members.end())
        _members.push_back({'"' + QByteArray(name.data(), name.size()) + '"', value});
    else
        member->value = value;
}

QByteArray JsonText::toLines() const
{
    return joined("{\n    ", ",\n    ", "\n}\n");
}

QByteArray JsonText::toLine() const
{
    return joined("{ ", ", ", " }");
}

QByteArray JsonText::joined(const QByteArray& before, const QByteArray& between,
                            const QByteArray& after) const
{
    QByteArray text = before;
    for (const Member& member : _members) {
        if (&member != &_members.front())
            text += between;
        text += member.name + ": " + member.value;
    }
    return text + after;
}

} // namespace Doc
