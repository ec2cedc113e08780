#include <plugins/PluginBaseSettings.h>

#include <ovcore/Settings.h>
#include <system/SettingsFile.h>

#include <QDir>
#include <QFile>

#include <utility>

namespace App {

PluginBaseSettings::PluginBaseSettings(const QString& name) : _name(name)
{
    QDir directory(Core::Settings::instance().applicationDirPath());
    // Qt prints a warning about an empty name.
    if (!_name.isEmpty())
        directory.mkdir(_name);
    // Qt's resources are read-only: a file among them is never written.
    const QString path = directory.cd(_name) ? directory.absolutePath() + QDir::separator()
                                             : QStringLiteral(":/unsaved/");
    _p_settings = std::make_unique<System::SettingsFile>(path + _name + QStringLiteral(".ini"));
}

PluginBaseSettings::PluginBaseSettings(const PluginBaseSettings& other)
    : _runValues(other._runValues), _p_settings(std::make_unique<System::SettingsFile>(
                                        other._p_settings->qSettings().fileName())),
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

PluginBaseSettings::~PluginBaseSettings() = default;

QVariant PluginBaseSettings::value(const QString& key, const QVariant& defaultValue)
{
    return _p_settings->value(key, defaultValue);
}

void PluginBaseSettings::setValue(const QString& key, const QVariant& value)
{
    _p_settings->setValue(key, value);
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
    _p_settings->clear();
    QFile::remove(defaultConfigPath());
    flush();
}

QSettings& PluginBaseSettings::qSettings()
{
    return _p_settings->qSettings();
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
    _p_settings->sync();
}

} // namespace App
