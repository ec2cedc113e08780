#include <ovcore/ConsoleObserverFile.h>

#include <ovcore/Settings.h>
#include <system/AppendedFile.h>

#include <QByteArray>
#include <QDir>
#include <QFile>

namespace Core {

namespace {

void appendEscaped(QByteArray& text, char character)
{
    switch (character) {
    case '\n':
        text += "\\n";
        return;
    case '\r':
        text += "\\r";
        return;
    case '\t':
        text += "\\t";
        return;
    }
    constexpr char hex[] = "0123456789abcdef";
    const auto code = static_cast<unsigned char>(character);
    text += "\\x";
    text += hex[code >> 4];
    text += hex[code & 0xf];
}

bool isControl(char character)
{
    const auto code = static_cast<unsigned char>(character);
    return code < 0x20 || code == 0x7f;
}

} // namespace

ConsoleObserverFile::ConsoleObserverFile(const QString& fileName)
    : _p_file(std::make_unique<QFile>(
          QDir(Settings::instance().applicationDirPath()).absoluteFilePath(fileName)))
{
    System::openForAppending(*_p_file);
}

ConsoleObserverFile::~ConsoleObserverFile() = default;

void ConsoleObserverFile::write(Severity, const QByteArray& line)
{
    if (!_p_file->isOpen())
        return;

    QByteArray text;
    text.reserve(line.size() + 1);
    for (const char character : line) {
        if (isControl(character))
            appendEscaped(text, character);
        else
            text += character;
    }
    text += '\n';
    _p_file->write(text);
}

} // namespace Core
