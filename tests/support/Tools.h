#pragma once

#include <support/Literals.h>

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QLibrary>
#include <QStandardPaths>
#include <QString>

/// Where this process and its children find the tools that they start by name.
namespace Tools {

/// Has them found in `directory`, and on no search path. What `isAlwaysFound` is found yet.
inline void findIn(const QString& directory)
{
    qputenv("PATH", QFile::encodeName(directory));
    // Windows looks into the current directory before it looks into its own.
    QDir::setCurrent(directory);
}

/// Whether it is a tool of Windows, which no search path hides.
inline bool isAlwaysFound(const QString& tool)
{
    const QString systemDirectory = qEnvironmentVariable("SystemRoot") + "/System32"_s;
    return !QStandardPaths::findExecutable(tool, {systemDirectory}).isEmpty();
}

/// Whether Windows is Wine, which loads a library whose functions are not all there.
inline bool isWine()
{
    return QLibrary::resolve("ntdll"_s, "wine_get_version") != nullptr;
}

/// What a program has printed, with the line ends that it meant.
inline QByteArray textOf(QByteArray output)
{
#ifdef Q_OS_WIN
    output.replace("\r\n", "\n");
#endif
    return output;
}

} // namespace Tools
