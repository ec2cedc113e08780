#include <plugins/PluginInfo.h>

namespace App {

PluginInfo::PluginInfo()
{
    _values.insert(QStringLiteral("QtVersion"), QString::fromLatin1(qVersion()));
}

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
