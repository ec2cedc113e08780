#pragma once

#include <ovcore/ConsoleObserver.h>
#include <ovcore_export.h>

#include <memory>

class QFile;
class QString;

namespace Core {

/// Appends what is logged to a file, one line a call. Others, in this process or another, may
/// append to it too.
class OVCORE_EXPORT ConsoleObserverFile : public ConsoleObserver
{
public:
    /// Opens `fileName`, which lies in the application directory when it is relative, for
    /// appending. When it cannot be opened the observer drops what it receives.
    explicit ConsoleObserverFile(const QString& fileName);
    ConsoleObserverFile(const ConsoleObserverFile&) = delete;
    ConsoleObserverFile& operator=(const ConsoleObserverFile&) = delete;
    ~ConsoleObserverFile() override;

    /// Writes the text and a line feed, and hands both to the system before it returns. Control
    /// characters inside the text are written as "\n", "\r", "\t" or "\x" and two hexadecimal
    /// digits, and a backslash as two, so that it stays one line that can be read back. What a full
    /// disk has cut short is ended before the next line begins.
    void write(Severity severity, const QByteArray& line) override;

private:
    std::unique_ptr<QFile> _p_file;
    /// Whether the file's last line was cut short.
    bool _endsWithinLine = false;
};

} // namespace Core
