#include <ovcore/Settings.h>

#include <system/SettingsFile.h>

#include <QCoreApplication>
#include <QDir>
#include <QMap>
#include <QStandardPaths>

#include <optional>

namespace Core {

struct Settings::Private
{
    std::optional<System::SettingsFile> store;
    QMap<QString, QVariant> runValues;
    QString applicationDirPath;
    QString pluginDirPath;
};

Settings* Settings::_p_instance = nullptr;

Settings& Settings::instance()
{
    if (!_p_instance)
        _p_instance = new Settings;
    return *_p_instance;
}

void Settings::destruct()
{
    delete _p_instance;
    _p_instance = nullptr;
}

Settings::Settings() : d(std::make_unique<Private>())
{
}

Settings::~Settings() = default;

void Settings::init()
{
    if (!d->store)
        d->store.emplace(QDir(applicationDirPath()).filePath(QStringLiteral("ovapp.ini")));
}

QVariant Settings::value(const QString& key, const QVariant& defaultValue) const
{
    return d->store ? d->store->value(key, defaultValue) : defaultValue;
}

void Settings::setValue(const QString& key, const QVariant& value)
{
    if (d->store)
        d->store->setValue(key, value);
}

QVariant Settings::runValue(const QString& key, const QVariant& defaultValue) const
{
    return d->runValues.value(key, defaultValue);
}

void Settings::setRunValue(const QString& key, const QVariant& value)
{
    d->runValues.insert(key, value);
}

QString Settings::applicationDirPath() const
{
    return d->applicationDirPath.isEmpty() ? QCoreApplication::applicationDirPath()
                                           : d->applicationDirPath;
}

void Settings::setApplicationDirPath(const QString& path)
{
    d->applicationDirPath = path;
}

QString Settings::pluginDirPath() const
{
    if (!d->pluginDirPath.isEmpty())
        return d->pluginDirPath;
    return QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral("plugins"));
}

void Settings::setPluginDirPath(const QString& path)
{
    d->pluginDirPath = path;
}

QString Settings::sysFontDirPath() const
{
    return QDir(applicationDirPath()).filePath(QStringLiteral("fonts"));
}

QString Settings::usrFontDirPath() const
{
    return QDir(QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation))
        .filePath(QStringLiteral("ovapp/fonts"));
}

} // namespace Core
