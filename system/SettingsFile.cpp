#include <system/SettingsFile.h>

#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QLockFile>
#include <QThread>

#include <filesystem>
#include <system_error>

namespace System {

namespace {

/// Waits while another process writes a settings file, and removes the lock file of a process that
/// was killed. Returns false if the lock file cannot be removed.
bool waitForLock(const QString& settingsPath)
{
    QFileInfo file(settingsPath + QLatin1String(".lock"));
    if (!file.exists())
        return true;
    QLockFile lock(file.filePath());
    // Until a process has locked the file that it created, only the file's age protects it.
    lock.setStaleLockTime(250);
    while (file.exists() && !lock.tryLock()) {
        // Each write creates its lock file anew: an old one belongs to a process that is stuck.
        if (qAbs(file.lastModified().msecsTo(QDateTime::currentDateTimeUtc())) > 2000)
            return false;
        QThread::msleep(1);
        file.refresh();
    }
    return true;
}

bool hasRoom(const QString& settingsPath)
{
    // QSettings writes a second file and renames it.
    constexpr std::uintmax_t reserve = 64 << 10;
    const QFileInfo file(settingsPath);
#ifdef Q_OS_WIN
    const std::filesystem::path directory = file.path().toStdWString();
#else
    const std::filesystem::path directory = QFile::encodeName(file.path()).toStdString();
#endif
    std::error_code error;
    const std::filesystem::space_info space = std::filesystem::space(directory, error);
    // The capacity of a file system without a limit is 0.
    return error || space.capacity == 0 ||
           space.available > static_cast<std::uintmax_t>(file.size()) + reserve;
}

} // namespace

SettingsFile::SettingsFile(const QString& path)
    : _settings(path, QSettings::IniFormat), _ungroupedSettings(path, QSettings::IniFormat)
{
}

SettingsFile::~SettingsFile()
{
    if (!_clearedKeys.isEmpty() || !_unwrittenValues.isEmpty())
        sync();
}

QVariant SettingsFile::value(const QString& key, const QVariant& defaultValue) const
{
    const QString absolute = absoluteKey(key);
    const bool isCleared = _clearedKeys.contains(absolute);
    const QVariant written = isCleared ? defaultValue : _settings.value(key, defaultValue);
    return _unwrittenValues.value(absolute, written);
}

void SettingsFile::setValue(const QString& key, const QVariant& value)
{
    const QString absolute = absoluteKey(key);
    if (absolute.isEmpty())
        return;
    _unwrittenValues.insert(absolute, value);
    sync();
}

void SettingsFile::clear()
{
    _unwrittenValues.clear();
    _clearedKeys = _ungroupedSettings.allKeys();
}

void SettingsFile::sync()
{
    if (!waitForLock(_settings.fileName()) || !hasRoom(_settings.fileName()))
        return;
    for (const QString& key : qAsConst(_clearedKeys))
        _ungroupedSettings.remove(key);
    for (auto each = _unwrittenValues.cbegin(); each != _unwrittenValues.cend(); ++each)
        _ungroupedSettings.setValue(each.key(), each.value());
    _ungroupedSettings.sync();
    _clearedKeys.clear();
    _unwrittenValues.clear();
}

QSettings& SettingsFile::qSettings()
{
    return _settings;
}

/// Returns the key that `QSettings` uses; empty if it ignores `key`.
QString SettingsFile::absoluteKey(const QString& key) const
{
    const QStringList parts = key.split(QLatin1Char('/'), Qt::SkipEmptyParts);
    const QString group = _settings.group();
    return parts.isEmpty() || group.isEmpty()
               ? parts.join(QLatin1Char('/'))
               : group + QLatin1Char('/') + parts.join(QLatin1Char('/'));
}

} // namespace System
