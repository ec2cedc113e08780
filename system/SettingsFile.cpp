#include <system/SettingsFile.h>

#include <QBasicTimer>
#include <QDataStream>
#include <QDateTime>
#include <QEvent>
#include <QFileInfo>
#include <QLockFile>
#include <QSettings>
#include <QStorageInfo>
#include <QThread>
#include <QVector>

#include <filesystem>
#include <mutex>
#include <system_error>

namespace System {

namespace {

std::mutex mutex;

/// Waits while other processes write, and removes the lock file of a process that was killed.
bool waitForLock(const QString& path)
{
    QFileInfo file(path);
    QLockFile lock(path);
    // Until a process has locked the file that it created, only the file's age protects it.
    lock.setStaleLockTime(250);
    while (file.exists() && !lock.tryLock()) {
        // Each write has a lock file of its own, which does not get old.
        if (qAbs(file.lastModified().msecsTo(QDateTime::currentDateTimeUtc())) > 2000)
            return false;
        QThread::msleep(1);
        file.refresh();
    }
    return true;
}

/// Returns how many bytes must be free for the second file that `QSettings` writes and renames.
std::uintmax_t requiredSpace(const QSettings& settings)
{
    QByteArray values;
    QDataStream stream(&values, QIODevice::WriteOnly);
    const QStringList keys = settings.allKeys();
    for (const QString& key : keys)
        stream << key << settings.value(key);
    // A serialised byte takes up to four in the file. The size of the present file stands for keys
    // outside of the current group; the blocks are for the lock file and the ends of the files.
    const QFileInfo file(settings.fileName());
    const qint64 blocks = 4 * QStorageInfo(file.path()).blockSize();
    return static_cast<std::uintmax_t>(file.size() + 4 * qint64(values.size()) + blocks);
}

class SettingsFile : public QSettings
{
public:
    explicit SettingsFile(const QString& path)
        : QSettings(path, IniFormat),
          _lockPath((fileName() + QLatin1String(".lock")).toStdU16String()),
          _directoryPath(_lockPath.parent_path())
    {
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
        setIniCodec("UTF-8");
#endif
    }

    bool canBeWritten() const
    {
        std::error_code error;
        if (std::filesystem::exists(_lockPath, error) &&
            !waitForLock(fileName() + QLatin1String(".lock")))
            return false;
        // Either the directory is missing, or no settings file is that large.
        const auto available = std::filesystem::space(_directoryPath, error).available;
        return error || available > 32 << 20 || available > requiredSpace(*this);
    }

    int users = 1;

protected:
    bool event(QEvent* event) override
    {
        if (event->type() != QEvent::UpdateRequest && event->type() != QEvent::Timer)
            return QSettings::event(event);
        const std::lock_guard<std::mutex> lock(mutex);
        if (canBeWritten()) {
            _retryTimer.stop();
            sync();
        } else if (!_retryTimer.isActive()) {
            _retryTimer.start(1000, this);
        }
        return true;
    }

private:
    const std::filesystem::path _lockPath;
    const std::filesystem::path _directoryPath;
    QBasicTimer _retryTimer;
};

/// Never destroyed, since the destructor of a file writes.
QVector<SettingsFile*>& openFiles()
{
    static auto& files = *new QVector<SettingsFile*>;
    return files;
}

} // namespace

QSettings* openSettings(const QString& path)
{
    const std::lock_guard<std::mutex> lock(mutex);
    const QString absolutePath = QFileInfo(path).absoluteFilePath();
    for (SettingsFile* file : openFiles()) {
        if (file->fileName() != absolutePath)
            continue;
        if (!file->canBeWritten()) {
            ++file->users;
            return file;
        }
        // A constructor that writes the changes of this object does not know the encoding yet.
        file->allKeys();
    }
    openFiles().append(new SettingsFile(path));
    return openFiles().last();
}

void syncSettings(QSettings& settings)
{
    const std::lock_guard<std::mutex> lock(mutex);
    if (static_cast<SettingsFile&>(settings).canBeWritten())
        settings.sync();
}

void closeSettings(QSettings* settings)
{
    auto* file = static_cast<SettingsFile*>(settings);
    const std::lock_guard<std::mutex> lock(mutex);
    if (!file || --file->users > 0 || !file->canBeWritten())
        return;
    openFiles().removeOne(file);
    delete file;
}

} // namespace System
