#pragma once

#include <ovapp_export.h>

#include <QMap>
#include <QString>
#include <QVariant>

#include <memory>

class QSettings;

namespace System {
class SettingsFile;
}

namespace App {

/// A plug-in's parameters: stored values, in the INI file `N/N.ini` of the application directory
/// for a plug-in named N, and run values, which last as long as the object. A key can have a value
/// of each kind. Derive a class to give the parameters names and types:
///
///     class MarkerSettings : public App::PluginBaseSettings
///     {
///     public:
///         MarkerSettings() : PluginBaseSettings(QStringLiteral("Marker")) {}
///         int speed() { return value(QStringLiteral("Laser/speed"), 1000).toInt(); }
///         void setSpeed(int speed) { setValue(QStringLiteral("Laser/speed"), speed); }
///     };
///
/// If the file cannot be written, for example on a full disk, it is unchanged and the values remain
/// in memory: the next call that writes writes them too, and the destructor tries once more. If the
/// directory cannot be created or entered, stored values last as long as an object of that name. No
/// function reports an error.
///
/// The name becomes the name of a directory and of files. It should consist of letters, digits, "-"
/// and "_", and differ from the names of other plug-ins in more than case. With a separator or
/// ".." in the name, the directory may be outside of the application directory or not exist.
///
/// Use an object in one thread at a time. Objects with the same name, also in different threads and
/// processes, share the stored values.
class OVAPP_EXPORT PluginBaseSettings
{
public:
    /// Creates the plug-in's directory in the application directory if it is missing, and opens the
    /// INI file in it. If `name` is empty, the file is `.ini` in the application directory.
    explicit PluginBaseSettings(const QString& name = QString());
    /// Copies the name and the run values, and opens the same file. Both objects share the stored
    /// values, except those that `other` has not been able to write yet.
    PluginBaseSettings(const PluginBaseSettings& other);
    /// Closes the file as the destructor does, and copies `other`.
    PluginBaseSettings& operator=(const PluginBaseSettings& other);
    /// Writes pending changes and closes the file.
    virtual ~PluginBaseSettings();

    /// Returns the stored value of `key`; `defaultValue` if there is none. The key is relative to
    /// the current group of `qSettings`.
    QVariant value(const QString& key, const QVariant& defaultValue = QVariant());
    /// Stores a value and writes the file. The key is relative to the current group of `qSettings`.
    void setValue(const QString& key, const QVariant& value);

    /// Returns the run value of `key`; an invalid value if there is none.
    QVariant runValue(const QString& key) const;
    /// Sets the run value of `key`, which may be invalid. It is never written to a file.
    void setRunValue(const QString& key, const QVariant& value);
    /// Returns whether `key` has a run value, even an invalid one.
    bool hasRunValue(const QString& key) const;
    /// Removes the run value of `key`, if there is one; the stored value is unchanged.
    void removeRunValue(const QString& key);

    /// Removes all stored values and deletes the default configuration file; run values are
    /// unchanged.
    void resetParams();
    /// Returns the `QSettings` of the file, for groups, arrays and removal. It does not contain
    /// values that could not be written yet. Changes are written by `flush`, by `setValue`, or at
    /// Qt's own timing, without protection: Qt can truncate the file on a full disk, and waits
    /// for a lock file that cannot be removed.
    QSettings& qSettings();

    /// Returns the plug-in's directory, whether it exists or not.
    QString workingDirPath() const;
    /// Returns the path of the file `N.cfg` in the plug-in's directory. Only the plug-in writes it.
    QString defaultConfigPath() const;

protected:
    /// Writes the changes made through `qSettings`.
    void flush();

private:
    QMap<QString, QVariant> _runValues;
    std::unique_ptr<System::SettingsFile> _p_settings;
    QString _name;
};

} // namespace App
