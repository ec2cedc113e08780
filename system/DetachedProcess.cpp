#include <system/DetachedProcess.h>

#include <QProcess>

#ifdef Q_OS_WIN
#include <system/AppendFile.h>

#include <QFile>

#include <io.h>
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
    QFile file(outputFilePath);
    if (!openForAppending(file, WriteMode::WriteThrough))
        return 0;
    const auto handle = reinterpret_cast<HANDLE>(_get_osfhandle(file.handle()));
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
