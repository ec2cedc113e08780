#include <plugins/PluginBaseSettings.h>

#include <ovcore/Settings.h>
#include <system/SettingsFile.h>

#include <QDir>
#include <QFile>
#include <QSettings>

#include <utility>

namespace App {

PluginBaseSettings::PluginBaseSettings(const QString& name) : _p_settings(nullptr), _name(name)
{
    QDir directory(Core::Settings::instance().applicationDirPath());
    // Qt prints a warning about an empty name.
    if (!_name.isEmpty())
        directory.mkdir(_name);
    if (!directory.cd(_name))
        return;
    _p_settings = System::openSettings(directory.absolutePath() + QDir::separator() + _name +
                                       QStringLiteral(".ini"));
}

PluginBaseSettings::PluginBaseSettings(const PluginBaseSettings& other)
    : _runValues(other._runValues),
      _p_settings(other._p_settings ? System::openSettings(other._p_settings->fileName())
                                    : nullptr),
      _name(other._name)
{
}

PluginBaseSettings& PluginBaseSettings::operator=(const PluginBaseSettings& other)
{
    PluginBaseSettings copy(other);
    std::swap(_runValues, copy._runValues);
    std::swap(_p_settings, copy._p_settings);
    std::swap(_name, copy._name);
    return *this;
}

PluginBaseSettings::~PluginBaseSettings()
{
    System::closeSettings(_p_settings);
}

QVariant PluginBaseSettings::value(const QString& key, const QVariant& defaultValue)
{
    return qSettings().value(key, defaultValue);
}

void PluginBaseSettings::setValue(const QString& key, const QVariant& value)
{
    qSettings().setValue(key, value);
    flush();
}

QVariant PluginBaseSettings::runValue(const QString& key) const
{
    return _runValues.value(key);
}

void PluginBaseSettings::setRunValue(const QString& key, const QVariant& value)
{
    _runValues.insert(key, value);
}

bool PluginBaseSettings::hasRunValue(const QString& key) const
{
    return _runValues.contains(key);
}

void PluginBaseSettings::removeRunValue(const QString& key)
{
    _runValues.remove(key);
}

void PluginBaseSettings::resetParams()
{
    qSettings().clear();
    QFile::remove(defaultConfigPath());
    flush();
}

QSettings& PluginBaseSettings::qSettings()
{
    // Qt's resources are read-only: a file among them is never written.
    if (!_p_settings)
        _p_settings = System::openSettings(QStringLiteral(":/unsaved/%1.ini").arg(_name));
    return *_p_settings;
}

QString PluginBaseSettings::workingDirPath() const
{
    return QDir(Core::Settings::instance().applicationDirPath()).filePath(_name);
}

QString PluginBaseSettings::defaultConfigPath() const
{
    return QDir(workingDirPath()).filePath(_name + QStringLiteral(".cfg"));
}

void PluginBaseSettings::flush()
{
    if (_p_settings)
        System::syncSettings(*_p_settings);
}

} // namespace App
