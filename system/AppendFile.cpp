#include <system/AppendFile.h>

#include <QFile>
#include <QProcess>

#ifdef Q_OS_WIN
#include <QDir>
#include <QScopeGuard>

#include <fcntl.h>
#include <io.h>
#include <qt_windows.h>
#endif

namespace System {

#ifdef Q_OS_WIN
namespace {

/// QFile would seek to the end only once, when it opens the file. A handle with no other right than
/// FILE_APPEND_DATA always writes at the end.
HANDLE openHandle(const QString& path, DWORD flags)
{
    const QString nativePath = QDir::toNativeSeparators(path);
    return CreateFileW(reinterpret_cast<const wchar_t*>(nativePath.utf16()), FILE_APPEND_DATA,
                       FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_ALWAYS,
                       flags, nullptr);
}

} // namespace
#endif

bool openForAppending(QFile& file)
{
    constexpr QIODevice::OpenMode mode =
        QIODevice::WriteOnly | QIODevice::Append | QIODevice::Unbuffered;
#ifdef Q_OS_WIN
    const HANDLE handle = openHandle(file.fileName(), FILE_ATTRIBUTE_NORMAL);
    if (handle == INVALID_HANDLE_VALUE)
        return false;
    const int descriptor = _open_osfhandle(reinterpret_cast<intptr_t>(handle), _O_APPEND);
    if (descriptor == -1) {
        CloseHandle(handle);
        return false;
    }
    return file.open(descriptor, mode, QFileDevice::AutoCloseHandle);
#else
    return file.open(mode);
#endif
}

qint64 startDetached(const QString& program, const QStringList& arguments,
                     const QString& outputFilePath)
{
    QProcess process;
    process.setProgram(program);
    process.setArguments(arguments);
#ifdef Q_OS_WIN
    // File watchers are only notified when the data reaches the disk.
    const HANDLE handle = openHandle(outputFilePath, FILE_FLAG_WRITE_THROUGH);
    if (handle == INVALID_HANDLE_VALUE)
        return 0;
    const auto closeHandle = qScopeGuard([handle] { CloseHandle(handle); });
    SetHandleInformation(handle, HANDLE_FLAG_INHERIT, HANDLE_FLAG_INHERIT);
    process.setCreateProcessArgumentsModifier([handle](QProcess::CreateProcessArguments* call) {
        call->startupInfo->hStdOutput = handle;
        call->startupInfo->hStdError = handle;
    });
#else
    // QProcess ignores MergedChannels for detached processes.
    process.setStandardOutputFile(outputFilePath, QIODevice::Append);
    process.setStandardErrorFile(outputFilePath, QIODevice::Append);
#endif
    qint64 pid = 0;
    return process.startDetached(&pid) ? pid : 0;
}

} // namespace System
