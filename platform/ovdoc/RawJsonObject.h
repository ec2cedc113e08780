#pragma once

#include <QByteArray>

#include <string_view>
#include <vector>

namespace Doc {

/// The members of a JSON object as text. Replacing the value of one member does not change a single
/// character of the others; QJsonDocument would round integers beyond 53 bits.
class RawJsonObject
{
public:
    /// Splits `json`, which must be empty or a valid JSON object, into its members.
    explicit RawJsonObject(const QByteArray& json);

    /// Returns true if several members have this name.
    bool hasDuplicate(std::string_view name) const;
    /// Returns the text of a member's value, the first if there are several members of this name;
    /// empty if there is none.
    QByteArray value(std::string_view name) const;
    /// Replaces the value that `value` returns, or appends a member if there is none.
    void setValue(std::string_view name, const QByteArray& value);

    /// Returns the object with one member per line.
    QByteArray toIndented() const;
    /// Returns the object on one line, unless a value has several lines.
    QByteArray toCompact() const;

private:
    struct Member
    {
        std::string_view name; ///< without quotes and escapes
        std::string_view nameText;
        std::string_view valueText;
    };

    void append(std::string_view nameText, std::string_view valueText);
    std::string_view keep(const QByteArray& text);
    QByteArray join(std::string_view before, std::string_view between,
                    std::string_view after) const;

    std::vector<QByteArray> _texts; ///< own the characters that the members refer to
    std::vector<Member> _members;
};

} // namespace Doc
