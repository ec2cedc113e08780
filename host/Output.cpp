#include "Output.h"

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
    print(stderr, programName + QLatin1String(": ") + escapeNonPrintable(message));
    return exitCode;
}

void warn(const QString& message)
{
    print(stderr, programName + QLatin1String(": warning: ") + escapeNonPrintable(message));
}

QString quoted(const QString& text)
{
    return QLatin1Char('\'') + text + QLatin1Char('\'');
}

QString verdictText(const QString& verdict, const QString& reason)
{
    if (verdict == QLatin1String("accepted"))
        return reason.isEmpty() ? verdict : QLatin1String("accepted, but ") + reason;
    if (verdict == QLatin1String("other-board"))
        return QLatin1String("for another board: ") + reason;
    if (verdict == QLatin1String("left-out"))
        return QLatin1String("left out: ") + reason;
    return QLatin1String("cannot be used: ") + reason;
}

QString escapeNonPrintable(const QString& text)
{
    QString result;
    for (const QChar character : text) {
        // Characters outside the basic plane are pairs of surrogates. For Qt, the separators of
        // lines and paragraphs are printable.
        const bool isPrintable = character.isSurrogate() || character.isPrint();
        if (!isPrintable || character.category() == QChar::Separator_Line ||
            character.category() == QChar::Separator_Paragraph)
            result += QStringLiteral("\\x%1").arg(character.unicode(), 2, 16, QLatin1Char('0'));
        else
            result += character;
    }
    return result;
}

} // namespace Host
