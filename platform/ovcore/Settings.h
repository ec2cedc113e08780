#pragma once

#include <ovcore_export.h>

#include <QVariant>

#include <memory>

class QString;

/// What every part of the program uses: settings, the log, the description of the board, versions.
namespace Core {

/// The program's settings: stored values, which persist in the INI file `ovapp.ini` of the
/// application directory, and run values, which hold until `destruct`. The two never meet. It also
/// knows the directories that the program works with. Main thread only.
class OVCORE_EXPORT Settings
{
public:
    /// The one service; made at the first call, and again at the first call after `destruct`.
    static Settings& instance();
    /// Forgets everything but what is on disk: stored values not yet written are written, run
    /// values and directories that were set are gone.
    static void destruct();

    Settings(const Settings&) = delete;
    Settings& operator=(const Settings&) = delete;

    /// Opens the store in the application directory as it is now; does nothing when it is open.
    void init();

    /// The stored value of `key`, or `defaultValue` when there is none or before `init`.
    QVariant value(const QString& key, const QVariant& defaultValue = QVariant()) const;
    /// Stores a value and writes the file before it returns; does nothing before `init`. Where the
    /// file cannot be written it stays as it was, and the value holds until `destruct`.
    void setValue(const QString& key, const QVariant& value);

    /// The run value of `key`, or `defaultValue` when there is none.
    QVariant runValue(const QString& key, const QVariant& defaultValue = QVariant()) const;
    /// Sets a run value, before `init` too.
    void setRunValue(const QString& key, const QVariant& value);

    /// The directory that the program keeps its files in; the executable's own by default.
    QString applicationDirPath() const;
    /// Call it before `init`: an open store stays where it is.
    void setApplicationDirPath(const QString& path);

    /// The directory that plug-ins are looked for in; by default `plugins` beside the executable,
    /// which plug-ins come with, wherever the program keeps its files.
    QString pluginDirPath() const;
    /// Any path, which need not exist; an empty one stands for the default.
    void setPluginDirPath(const QString& path);

    /// `fonts` in the application directory.
    QString sysFontDirPath() const;
    /// `ovapp/fonts` in the user's own data directory.
    QString usrFontDirPath() const;

private:
    Settings();
    ~Settings();

    struct Private;
    std::unique_ptr<Private> d;

    static OVCORE_NO_EXPORT Settings* _p_instance;
};

} // namespace Core
