#pragma once

#include <QString>

/// "text"_s is a QString; the text is in UTF-8.
inline QString operator""_s(const char* text, std::size_t size)
{
    return QString::fromUtf8(text, static_cast<int>(size));
}
