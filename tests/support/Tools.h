#pragma once

#include <support/Literals.h>

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QLibrary>
#include <QStandardPaths>
#include <QString>

/// The tools that this process and its children start by name.
namespace Tools {

/// Makes `directory` the only place where tools are found, apart from the tools for which
/// `isAlwaysFound` returns true.
inline void findIn(const QString& directory)
{
    qputenv("PATH", QFile::encodeName(directory));
    // Windows searches the current directory before the system directory.
    QDir::setCurrent(directory);
}

/// Returns true for a tool in the system directory of Windows, which is always searched.
inline bool isAlwaysFound(const QString& tool)
{
    const QString systemDirectory = qEnvironmentVariable("SystemRoot") + "/System32"_s;
    return !QStandardPaths::findExecutable(tool, {systemDirectory}).isEmpty();
}

/// Returns true under Wine, which loads libraries even if imported functions are missing.
inline bool isWine()
{
    return QLibrary::resolve("ntdll"_s, "wine_get_version") != nullptr;
}

/// Returns the output of a program with line feeds as line ends.
inline QByteArray textOf(QByteArray output)
{
#ifdef Q_OS_WIN
    output.replace("\r\n", "\n");
#endif
    return output;
}

} // namespace Tools
