#include <system/DetachedProcess.h>

#include <QProcess>

#ifdef Q_OS_WIN
#include <QDir>
#include <QScopeGuard>

#include <qt_windows.h>
#endif

namespace System {

qint64 startDetached(const QString& program, const QStringList& arguments,
                     const QString& outputFilePath)
{
    QProcess process;
    process.setProgram(program);
    process.setArguments(arguments);

#ifdef Q_OS_WIN
    // Qt would go to the end of the file once, at the start. Only a handle that may append and
    // nothing else always writes there.
    SECURITY_ATTRIBUTES inherited = {sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
    const QString path = QDir::toNativeSeparators(outputFilePath);
    const HANDLE file =
        CreateFileW(reinterpret_cast<const wchar_t*>(path.utf16()), FILE_APPEND_DATA,
                    FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, &inherited, OPEN_ALWAYS,
                    FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return 0;
    const auto close = qScopeGuard([file] { CloseHandle(file); });
    process.setCreateProcessArgumentsModifier([file](QProcess::CreateProcessArguments* call) {
        call->startupInfo->hStdOutput = file;
        call->startupInfo->hStdError = file;
    });
#else
    // The channels are not merged, since that does not reach a detached process.
    process.setStandardOutputFile(outputFilePath, QIODevice::Append);
    process.setStandardErrorFile(outputFilePath, QIODevice::Append);
#endif

    qint64 pid = 0;
    return process.startDetached(&pid) ? pid : 0;
}

} // namespace System
