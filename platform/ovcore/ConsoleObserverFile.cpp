#include <ovcore/ConsoleObserverFile.h>

#include <ovcore/Settings.h>
#include <system/AppendFile.h>

#include <QByteArray>
#include <QDir>
#include <QFile>

namespace Core {

namespace {

void appendEscaped(QByteArray& text, char character)
{
    switch (character) {
    case '\\':
        text += "\\\\";
        return;
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

bool needsEscape(char character)
{
    const auto code = static_cast<unsigned char>(character);
    return code < 0x20 || code == 0x7f || character == '\\';
}

bool endsWithinLine(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) && file.seek(file.size() - 1) && file.read(1) != "\n";
}

} // namespace

ConsoleObserverFile::ConsoleObserverFile(const QString& fileName)
    : _p_file(std::make_unique<QFile>(
          QDir(Settings::instance().applicationDirPath()).absoluteFilePath(fileName)))
{
    if (System::openForAppending(*_p_file))
        _endsWithinLine = endsWithinLine(_p_file->fileName());
}

ConsoleObserverFile::~ConsoleObserverFile() = default;

void ConsoleObserverFile::write(Severity, const QByteArray& line)
{
    if (!_p_file->isOpen())
        return;

    QByteArray text;
    text.reserve(line.size() + 2);
    if (_endsWithinLine)
        text += '\n';
    for (const char character : line) {
        if (needsEscape(character))
            appendEscaped(text, character);
        else
            text += character;
    }
    text += '\n';
    const auto written = _p_file->write(text);
    if (written > 0)
        _endsWithinLine = written < text.size() && text.at(static_cast<int>(written) - 1) != '\n';
}

} // namespace Core
