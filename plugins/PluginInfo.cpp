#include <plugins/PluginInfo.h>

namespace App {

PluginInfo::PluginInfo()
{
    _values.insert(QStringLiteral("QtVersion"), QString::fromLatin1(qVersion()));
}

PluginInfo::PluginInfo(const PluginInfo& other) = default;

PluginInfo::PluginInfo(PluginInfo&& other) noexcept = default;

PluginInfo& PluginInfo::operator=(const PluginInfo& other) = default;

PluginInfo& PluginInfo::operator=(PluginInfo&& other) noexcept = default;

PluginInfo::~PluginInfo() = default;

QVariant PluginInfo::get(const QString& key, const QVariant& defaultValue) const
{
    return _values.value(key, defaultValue);
}

void PluginInfo::set(const QString& key, const QVariant& value)
{
    _values.insert(key, value);
}

QStringList PluginInfo::keys() const
{
    return _values.keys();
}

} // namespace App
