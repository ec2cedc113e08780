#pragma once

#include <ovsystem_export.h>

#include <QMap>
#include <QSettings>
#include <QString>
#include <QStringList>
#include <QVariant>

namespace System {

/// An INI file that remains complete on a full disk, where `QSettings` treats a truncated write as
/// successful. Values are only passed to `QSettings` while the file can be written: there is more
/// free space than the size of the file plus 64 KiB, and there is no lock file that cannot be
/// removed, for which `QSettings` would wait forever. Until then, they remain in memory.
///
/// Use an object on one thread at a time. Objects for the same file, also in different threads and
/// processes, share the values that have been written.
class OVSYSTEM_EXPORT SettingsFile
{
public:
    /// Opens the file, which does not have to exist.
    explicit SettingsFile(const QString& path);
    Q_DISABLE_COPY(SettingsFile)
    /// Tries once more to write the values in memory, which are lost otherwise.
    ~SettingsFile();

    /// Returns the value of `key`, which is relative to the current group of `qSettings`;
    /// `defaultValue` if there is none.
    QVariant value(const QString& key, const QVariant& defaultValue = QVariant()) const;
    /// Sets the value of `key`, which is relative to the current group of `qSettings`, and calls
    /// `sync`.
    void setValue(const QString& key, const QVariant& value);
    /// Removes the values that the file has now; the next `sync` writes the file.
    void clear();
    /// Writes the values in memory and the changes made through `qSettings`, and reads the changes
    /// of other processes. Does nothing if the file cannot be written. Waits while another process
    /// writes it, but not for a lock file that is older than two seconds.
    void sync();

    /// Returns a plain `QSettings` of the file, without the values in memory. Qt writes the changes
    /// made through it at its own timing, and does not check whether the file can be written.
    QSettings& qSettings();

private:
    QString absoluteKey(const QString& key) const;

    QSettings _settings;
    QSettings _ungroupedSettings; ///< for absolute keys; shares the values of `_settings`
    QMap<QString, QVariant> _unwrittenValues;
    QStringList _clearedKeys; ///< not yet removed from the file
};

} // namespace System
