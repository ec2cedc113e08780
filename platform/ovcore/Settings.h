#pragma once

#include <ovcore_export.h>

#include <QVariant>

#include <memory>

class QString;

/// The services that all parts of the program use: settings, log, board description, version.
namespace Core {

/// The program's settings: stored values, in the INI file `ovapp.ini` of the application directory,
/// and run values, which last until `destruct`. A key can have a value of each kind. Also the paths
/// of the program's directories. Main thread only.
class OVCORE_EXPORT Settings
{
public:
    /// Returns the only instance; creates it if there is none.
    static Settings& instance();
    /// Deletes the instance, with its run values and paths. Stored values that still cannot be
    /// written are lost.
    static void destruct();

    Settings(const Settings&) = delete;
    Settings& operator=(const Settings&) = delete;

    /// Opens the INI file in the current application directory; does nothing if it is open.
    void init();

    /// Returns the stored value of `key`; `defaultValue` if there is none, or before `init`.
    QVariant value(const QString& key, const QVariant& defaultValue = QVariant()) const;
    /// Stores a value and writes the file; does nothing before `init`. If the file cannot be
    /// written, for example on a full disk, it is unchanged and the value remains in memory; the
    /// next call writes it too, and `destruct` tries once more.
    void setValue(const QString& key, const QVariant& value);

    /// Returns the run value of `key`; `defaultValue` if there is none.
    QVariant runValue(const QString& key, const QVariant& defaultValue = QVariant()) const;
    /// Sets a run value; also before `init`.
    void setRunValue(const QString& key, const QVariant& value);

    /// Returns the directory of the program's files, by default the executable's directory.
    QString applicationDirPath() const;
    /// Sets the directory of the program's files. After `init`, the INI file remains the same.
    void setApplicationDirPath(const QString& path);

    /// Returns the directory of the plug-ins, by default `plugins` in the executable's directory.
    QString pluginDirPath() const;
    /// Sets the directory of the plug-ins, which does not have to exist; the default if empty.
    void setPluginDirPath(const QString& path);

    /// Returns the path of `fonts` in the application directory.
    QString sysFontDirPath() const;
    /// Returns the path of `ovapp/fonts` in the user's data directory.
    QString usrFontDirPath() const;

private:
    Settings();
    ~Settings();

    struct Private;
    std::unique_ptr<Private> d;

    static OVCORE_NO_EXPORT Settings* _p_instance;
};

} // namespace Core
