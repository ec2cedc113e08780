#pragma once

#include <QString>
#include <QStringList>

/// "text"_s is a QString of the UTF-8 text.
inline QString operator""_s(const char* text, std::size_t size)
{
    return QString::fromUtf8(text, static_cast<int>(size));
}

inline QStringList words(const char* text)
{
    return QString::fromUtf8(text).split(u' ', Qt::SkipEmptyParts);
}
