#include <system/SettingsFile.h>

#include <QByteArrayList>
#include <QCoreApplication>
#include <QEvent>
#include <QFile>
#include <QFileInfo>
#include <QLockFile>
#include <QMap>
#include <QSettings>
#include <QStringList>
#include <QVariant>

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace System {

namespace {

/// Whether a file that QSettings has written holds so many keys: it gives each a line of its own.
bool holdsKeys(const QString& path, int keys)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return true;
    const QByteArrayList lines = file.readAll().split('\n');
    // After the last line's end there is nothing.
    return lines.last().isEmpty() &&
           std::count_if(lines.cbegin(), lines.cend(), [](const QByteArray& line) {
               return !line.trimmed().isEmpty() && !line.startsWith('[');
           }) >= keys;
}

std::filesystem::path systemPath(const QString& path)
{
#ifdef Q_OS_WIN
    return path.toStdWString();
#else
    return QFile::encodeName(path).toStdString();
#endif
}

QMap<QString, QVariant> valuesOf(const QSettings& settings)
{
    QMap<QString, QVariant> values;
    const QStringList keys = settings.allKeys();
    for (const QString& key : keys)
        values.insert(key, settings.value(key));
    return values;
}

/// Has settings hold these values, without writing them soon.
void hold(QSettings& settings, const QMap<QString, QVariant>& values)
{
    const QStringList keys = settings.allKeys();
    for (const QString& key : keys) {
        if (!values.contains(key))
            settings.remove(key);
    }
    for (auto value = values.cbegin(); value != values.cend(); ++value) {
        if (settings.value(value.key()) != value.value())
            settings.setValue(value.key(), value.value());
    }
    QCoreApplication::removePostedEvents(&settings, QEvent::UpdateRequest);
}

} // namespace

void removeAbandonedLock(const QString& settingsFile)
{
    const QString path = settingsFile + QStringLiteral(".lock");
    if (!QFileInfo::exists(path))
        return;
    // Whoever holds a lock also has the system's lock on its file, or holds it open on Windows, and
    // Qt removes no such file, however old it is. Only between making the file and locking it does
    // a process depend on the file's age.
    QLockFile lock(path);
    lock.setStaleLockTime(100);
    [[maybe_unused]] const bool removed = lock.tryLock(200);
}

void writeSettings(QSettings& settings, Unwritten unwritten)
{
    namespace fs = std::filesystem;
    const QString path = settings.fileName();
    removeAbandonedLock(path);

    // A second name costs no room, nor does going back to it.
    const QString canonicalPath = QFileInfo(path).canonicalFilePath();
    const bool isNew = canonicalPath.isEmpty();
    const fs::path file = systemPath(isNew ? path : canonicalPath);
    fs::path former = file;
    former += ".kept";
    std::error_code error;
    if (!isNew) {
        fs::remove(former, error);
        fs::create_hard_link(file, former, error);
    }
    const bool isKept = !isNew && !error;

    settings.sync();
    const bool canGoBack = isNew || (isKept && !fs::equivalent(file, former, error));
    if (!canGoBack || holdsKeys(path, int(settings.allKeys().size()))) {
        if (isKept)
            fs::remove(former, error);
        return;
    }
    const QMap<QString, QVariant> values = valuesOf(settings);
    if (isNew)
        fs::remove(file, error);
    else
        fs::rename(former, file, error);
    settings.sync();
    if (unwritten == Unwritten::Hold)
        hold(settings, values);
}

} // namespace System
