#pragma once

#include <QString>
#include <QTemporaryDir>

/// Returns the path of a file in a temporary directory of this process.
inline QString fuzzedFile(const char* name)
{
    static const QTemporaryDir directory;
    return directory.filePath(QLatin1String(name));
}

/// Aborts the process, which libFuzzer reports as a crash, if the condition is false.
inline void require(bool condition, const char* guarantee)
{
    if (!condition)
        qFatal("violated: %s", guarantee);
}
