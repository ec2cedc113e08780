#pragma once

#include <QByteArray>
#include <QLatin1String>

#include <vector>

namespace Doc {

/// A JSON object as the text of its members, for changing one of them and leaving the others as
/// they were written, to the letter: Qt's own writer would round whole numbers beyond 53 bits.
class JsonText
{
public:
    /// Takes a text apart that is known to be one JSON object.
    explicit JsonText(const QByteArray& object);

    /// Whether there are several members of that name, of which each reader takes another.
    bool namesTwice(QLatin1String name) const;
    /// The text of a member's value; empty when there is no such member. Of several it is the
    /// first.
    QByteArray value(QLatin1String name) const;
    /// Replaces a member's value or adds the member at the end.
    void setValue(QLatin1String name, const QByteArray& value);

    /// The object with a member a line.
    QByteArray toLines() const;
    /// The object on one line, as far as the values are.
    QByteArray toLine() const;

private:
    struct Member
    {
        QByteArray name; ///< in its quotes
        QByteArray value;
    };

    QByteArray joined(const QByteArray& before, const QByteArray& between,
                      const QByteArray& after) const;

    std::vector<Member> _members;
};

} // namespace Doc
