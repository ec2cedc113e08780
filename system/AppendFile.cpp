#include <system/AppendFile.h>

#include <QFile>

#ifdef Q_OS_WIN
#include <QDir>

#include <fcntl.h>
#include <io.h>
#include <qt_windows.h>
#endif

namespace System {

namespace {

constexpr QIODevice::OpenMode openMode =
    QIODevice::WriteOnly | QIODevice::Append | QIODevice::Unbuffered;

} // namespace

#ifdef Q_OS_WIN

bool openForAppending(QFile& file, WriteMode mode)
{
    // QFile would seek to the end only once, when it opens the file. A handle with no other right
    // than FILE_APPEND_DATA always writes at the end.
    const QString path = QDir::toNativeSeparators(file.fileName());
    const DWORD flags = mode == WriteMode::WriteThrough ? FILE_FLAG_WRITE_THROUGH : 0;
    const HANDLE handle =
        CreateFileW(reinterpret_cast<const wchar_t*>(path.utf16()), FILE_APPEND_DATA,
                    FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_ALWAYS,
                    FILE_ATTRIBUTE_NORMAL | flags, nullptr);
    if (handle == INVALID_HANDLE_VALUE)
        return false;
    const int descriptor = _open_osfhandle(reinterpret_cast<intptr_t>(handle), _O_APPEND);
    if (descriptor == -1) {
        CloseHandle(handle);
        return false;
    }
    return file.open(descriptor, openMode, QFileDevice::AutoCloseHandle);
}

#else

bool openForAppending(QFile& file, WriteMode)
{
    return file.open(openMode);
}

#endif

} // namespace System
