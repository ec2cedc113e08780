#include <ovdoc/RawJsonObject.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QString>

#include <algorithm>
#include <string>

namespace Doc {

namespace {

QByteArray toByteArray(std::string_view text)
{
    return {text.data(), static_cast<QByteArray::size_type>(text.size())};
}

/// Returns whether an odd number of backslashes precedes a position.
bool isEscaped(std::string_view json, std::size_t position)
{
    return (position - json.find_last_not_of('\\', position - 1)) % 2 == 0;
}

/// Returns the position of the character that ends the name or value at `start`.
std::size_t findEnd(std::string_view json, std::size_t start)
{
    int depth = 0;
    for (auto i = start; i < json.size(); ++i) {
        switch (json[i]) {
        case '"':
            do {
                i = json.find('"', i + 1);
            } while (i != std::string_view::npos && isEscaped(json, i));
            if (i == std::string_view::npos)
                return json.size();
            break;
        case '{':
        case '[':
            ++depth;
            break;
        case ':':
        case ',':
        case '}':
        case ']':
            if (depth == 0)
                return i;
            if (json[i] == '}' || json[i] == ']')
                --depth;
            break;
        }
    }
    return json.size();
}

std::string_view trimmed(std::string_view text)
{
    constexpr std::string_view whitespace = " \t\n\r";
    text.remove_prefix(std::min(text.find_first_not_of(whitespace), text.size()));
    return text.substr(0, text.find_last_not_of(whitespace) + 1);
}

template <typename Members>
auto find(Members& members, std::string_view name)
{
    return std::find_if(members.begin(), members.end(),
                        [name](const auto& member) { return member.name == name; });
}

} // namespace

RawJsonObject::RawJsonObject(const QByteArray& json)
{
    const std::string_view text = keep(json);
    auto start = text.find('{') + 1; // 0 if there is no object
    while (start > 0 && start < text.size()) {
        const auto colon = findEnd(text, start);
        if (colon == text.size() || text[colon] != ':')
            return;
        const auto end = findEnd(text, colon + 1);
        append(trimmed(text.substr(start, colon - start)),
               trimmed(text.substr(colon + 1, end - colon - 1)));
        start = end + 1;
    }
}

bool RawJsonObject::hasDuplicate(std::string_view name) const
{
    return std::count_if(_members.begin(), _members.end(),
                         [name](const Member& member) { return member.name == name; }) > 1;
}

QByteArray RawJsonObject::value(std::string_view name) const
{
    const auto member = find(_members, name);
    return member == _members.end() ? QByteArray() : toByteArray(member->valueText);
}

void RawJsonObject::setValue(std::string_view name, const QByteArray& value)
{
    const auto member = find(_members, name);
    if (member == _members.end())
        append(keep('"' + toByteArray(name) + '"'), keep(value));
    else
        member->valueText = keep(value);
}

QByteArray RawJsonObject::toIndented() const
{
    return join("{\n    ", ",\n    ", "\n}\n");
}

QByteArray RawJsonObject::toCompact() const
{
    return join("{ ", ", ", " }");
}

void RawJsonObject::append(std::string_view nameText, std::string_view valueText)
{
    std::string_view name = nameText.substr(1, nameText.size() - 2);
    // Qt would drop a byte order mark at the beginning, which belongs to the name.
    if (name.find('\\') != std::string_view::npos) {
        const QByteArray array = '[' + toByteArray(nameText) + ']';
        name = keep(QJsonDocument::fromJson(array).array().at(0).toString().toUtf8());
    }
    _members.push_back({name, nameText, valueText});
}

std::string_view RawJsonObject::keep(const QByteArray& text)
{
    _texts.push_back(text);
    return {_texts.back().constData(), static_cast<std::size_t>(text.size())};
}

QByteArray RawJsonObject::join(std::string_view before, std::string_view between,
                               std::string_view after) const
{
    std::string text(before);
    for (const Member& member : _members) {
        if (&member != &_members.front())
            text += between;
        text.append(member.nameText).append(": ").append(member.valueText);
    }
    return QByteArray::fromStdString(text.append(after));
}

} // namespace Doc
