#pragma once

#include <QString>
#include <QTemporaryDir>

/// Where the files of this process lie.
inline QString fuzzedFile(const char* name)
{
    static const QTemporaryDir directory;
    return directory.filePath(QLatin1String(name));
}

/// Ends the process, as a crash does, where a promise is broken.
inline void require(bool holds, const char* promise)
{
    if (!holds)
        qFatal("broken: %s", promise);
}
