#pragma once

#include <QString>
#include <QStringList>

/// "text"_s is a QString of the UTF-8 text.
inline QString operator""_s(const char* text, std::size_t size)
{
    return QString::fromUtf8(text, static_cast<int>(size));
}

/// Returns the words of a text, in which "%1" stands for `argument`, which may contain spaces.
inline QStringList words(const char* text, const QString& argument = "%1"_s)
{
    return QString::fromUtf8(text)
        .split(u' ', Qt::SkipEmptyParts)
        .replaceInStrings("%1"_s, argument);
}
