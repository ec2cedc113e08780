#include <system/SettingsFile.h>

#include <QBasicTimer>
#include <QCoreApplication>
#include <QDateTime>
#include <QEvent>
#include <QFileInfo>
#include <QLockFile>
#include <QSettings>
#include <QThread>
#include <QVector>

#include <filesystem>
#include <mutex>
#include <system_error>

namespace System {

namespace {

/// Guards the list of open files and their use counts.
std::mutex mutex;

/// Waits while other processes write a settings file, and removes the lock file of a process that
/// was killed. Returns false if the lock file cannot be removed.
bool waitForLock(const QString& settingsPath)
{
    QFileInfo file(settingsPath + QLatin1String(".lock"));
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

    /// Call it without the mutex, since it may wait for another process.
    bool canBeWritten() const
    {
        std::error_code error;
        return (!std::filesystem::exists(_lockPath, error) || waitForLock(fileName())) && hasRoom();
    }

    bool hasRoom() const
    {
        // QSettings writes a second file and renames it. The reserve is for pending changes.
        constexpr std::uintmax_t reserve = 1 << 20;
        std::error_code error;
        const auto size = static_cast<std::uintmax_t>(QFileInfo(fileName()).size());
        const auto available = std::filesystem::space(_directoryPath, error).available;
        return error || available > size + reserve;
    }

    int users = 1;

protected:
    bool event(QEvent* event) override;

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

/// Returns an open file with this path; null if there is none.
SettingsFile* findOpenFile(const QString& absolutePath)
{
    for (SettingsFile* file : qAsConst(openFiles())) {
        if (file->fileName() == absolutePath)
            return file;
    }
    return nullptr;
}

bool SettingsFile::event(QEvent* event)
{
    if (event->type() != QEvent::UpdateRequest && event->type() != QEvent::Timer)
        return QSettings::event(event);
    if (!canBeWritten()) {
        if (!_retryTimer.isActive())
            _retryTimer.start(1000, this);
        return true;
    }
    _retryTimer.stop();
    const std::lock_guard<std::mutex> lock(mutex);
    sync();
    if (users == 0 && openFiles().removeOne(this))
        deleteLater();
    return true;
}

} // namespace

QSettings* openSettings(const QString& path)
{
    const QString absolutePath = QFileInfo(path).absoluteFilePath();
    std::unique_lock<std::mutex> lock(mutex);
    if (findOpenFile(absolutePath)) {
        lock.unlock();
        const bool isLockable = waitForLock(absolutePath);
        lock.lock();
        // Another thread may have closed the file meanwhile.
        if (SettingsFile* file = findOpenFile(absolutePath)) {
            if (!isLockable || !file->hasRoom()) {
                ++file->users;
                return file;
            }
            // The constructor would write the changes before the encoding is set.
            file->sync();
        }
    }
    openFiles().append(new SettingsFile(absolutePath));
    return openFiles().last();
}

void syncSettings(QSettings& settings)
{
    if (static_cast<SettingsFile&>(settings).canBeWritten()) {
        const std::lock_guard<std::mutex> lock(mutex);
        settings.sync();
    }
}

void closeSettings(QSettings* settings)
{
    auto* file = static_cast<SettingsFile*>(settings);
    if (!file)
        return;
    const bool isWritable = file->canBeWritten();
    const std::lock_guard<std::mutex> lock(mutex);
    if (--file->users > 0)
        return;
    if (isWritable) {
        // Another thread may have reset the flag by which the destructor knows of changes.
        file->sync();
        openFiles().removeOne(file);
        if (file->thread() == QThread::currentThread())
            delete file;
        else
            file->deleteLater();
        return;
    }
    while (!file->group().isEmpty())
        file->endGroup();
    // The event loop of this thread may end before the file can be written.
    if (QCoreApplication::instance() && file->thread() == QThread::currentThread())
        file->moveToThread(QCoreApplication::instance()->thread());
}

} // namespace System
