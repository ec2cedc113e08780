#pragma once

#include <ovcore/ConsoleObserver.h>
#include <ovcore_export.h>

#include <memory>

class QFile;
class QString;

namespace Core {

/// Appends the log to a file, one line per call. Other observers, also of other processes, may
/// append to the same file.
class OVCORE_EXPORT ConsoleObserverFile : public ConsoleObserver
{
public:
    /// Opens `fileName` for appending. A relative name is resolved against the application
    /// directory. If the file cannot be opened, the observer ignores all lines.
    explicit ConsoleObserverFile(const QString& fileName);
    ConsoleObserverFile(const ConsoleObserverFile&) = delete;
    ConsoleObserverFile& operator=(const ConsoleObserverFile&) = delete;
    ~ConsoleObserverFile() override;

    /// Writes the text and a line feed, and passes both to the system before it returns. Control
    /// characters in the text are written as "\n", "\r", "\t" or "\x" and two hexadecimal digits,
    /// and a backslash as two backslashes: the text is one line, from which the original can be
    /// restored. A line that a full disk has truncated is terminated before the next one.
    void write(Severity severity, const QByteArray& line) override;

private:
    std::unique_ptr<QFile> _p_file;
    /// True if the last line of the file is truncated.
    bool _endsWithinLine = false;
};

} // namespace Core
