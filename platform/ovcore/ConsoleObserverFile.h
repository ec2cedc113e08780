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
    /// digits, so that it stays one line.
    void write(Severity severity, const QByteArray& line) override;

private:
    std::unique_ptr<QFile> _p_file;
};

} // namespace Core
