#pragma once

#include <ovapp_export.h>

#include <QMap>
#include <QString>
#include <QVariant>

class QSettings;

namespace App {

/// A plug-in's own parameters: stored values, in the INI file `N/N.ini` of the application
/// directory for a plug-in named N, and run values, which last as long as the object. The two
/// never meet. Derive from it to give the parameters names and types:
///
///     class MarkerSettings : public App::PluginBaseSettings
///     {
///     public:
///         MarkerSettings() : PluginBaseSettings(QStringLiteral("Marker")) {}
///         int speed() { return value(QStringLiteral("Laser/speed"), 1000).toInt(); }
///         void setSpeed(int speed) { setValue(QStringLiteral("Laser/speed"), speed); }
///     };
///
/// Where the directory cannot be made or entered, the stored values are held in memory only, and
/// are lost with the last object of that name. Where the file cannot be written they hold likewise,
/// and are written as soon as it can be. No operation reports an error.
///
/// The name becomes that of a directory and of files, so a good one is made of letters, digits, "-"
/// and "_", and is no other plug-in's in whatever letter case. One with a separator in it, or "..",
/// leads out of the application directory, or to a place where nothing can be stored.
///
/// An object is used by one thread at a time. Objects of one name see each other's stored values.
class OVAPP_EXPORT PluginBaseSettings
{
public:
    /// Makes the directory of that name in the application directory, where it is missing, and
    /// opens the store in it. Without a name that is the file `.ini` in the application directory
    /// itself.
    explicit PluginBaseSettings(const QString& name = QString());
    /// Copies the name and the run values, and opens a store of its own on the same file, outside
    /// of any group. Both then see the same stored values.
    PluginBaseSettings(const PluginBaseSettings& other);
    /// Closes the store, as the destructor does, and becomes a copy of `other`.
    PluginBaseSettings& operator=(const PluginBaseSettings& other);
    /// Writes what is still to be written and closes the store.
    virtual ~PluginBaseSettings();

    /// The stored value of `key`, or `defaultValue` when there is none.
    QVariant value(const QString& key, const QVariant& defaultValue = QVariant());
    /// Stores a value and writes the file before it returns.
    void setValue(const QString& key, const QVariant& value);

    /// The run value of `key`; an invalid one when there is none.
    QVariant runValue(const QString& key) const;
    /// Sets the run value of `key`, an invalid one too; it is never written to any file.
    void setRunValue(const QString& key, const QVariant& value);
    /// Whether `key` has a run value, were it an invalid one.
    bool hasRunValue(const QString& key) const;
    /// Takes the run value of `key` away, if there is one; a stored value stays.
    void removeRunValue(const QString& key);

    /// Removes every stored value and deletes the default configuration file; run values stay.
    void resetParams();
    /// The store itself. What is changed there is written some time later, at the latest when this
    /// object is destroyed.
    QSettings& qSettings();

    /// The plug-in's directory, whether it exists or not.
    QString workingDirPath() const;
    /// The file `N.cfg` in the plug-in's directory. It is for the plug-in to write; here it is only
    /// ever deleted.
    QString defaultConfigPath() const;

protected:
    /// Writes what was changed through `qSettings`.
    void flush();

private:
    QMap<QString, QVariant> _runValues;
    /// Owned. Null if the directory could not be entered, until a store is asked for.
    QSettings* _p_settings;
    QString _name;
};

} // namespace App
