#include "process/Output.h"

#include <cstddef>

namespace Host {

bool write(std::FILE* file, const QByteArray& bytes)
{
    const auto size = static_cast<std::size_t>(bytes.size());
    return std::fwrite(bytes.constData(), 1, size, file) == size && std::fflush(file) == 0;
}

void print(std::FILE* file, const QString& text)
{
    write(file, text.toUtf8() + '\n');
}

int fail(ExitCode exitCode, const QString& message)
{
    print(stderr, programName + QLatin1String(": ") + escapeControlCharacters(message));
    return exitCode;
}

void warn(const QString& message)
{
    print(stderr, programName + QLatin1String(": warning: ") + escapeControlCharacters(message));
}

QString quoted(const QString& text)
{
    return QLatin1Char('\'') + text + QLatin1Char('\'');
}

QString escapeControlCharacters(const QString& text)
{
    QString result;
    for (const QChar character : text) {
        if (character.category() == QChar::Other_Control)
            result += QStringLiteral("\\x%1").arg(character.unicode(), 2, 16, QLatin1Char('0'));
        else
            result += character;
    }
    return result;
}

} // namespace Host
