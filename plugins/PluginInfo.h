#pragma once

#include <ovapp_export.h>

#include <QMap>
#include <QString>
#include <QStringList>
#include <QVariant>

namespace App {

/// What a plug-in tells about itself: an open set of named values, which the library hands on as
/// they come. A copy is cheap and independent of its source; a record that was moved from holds
/// nothing. Any thread, as of any value.
class OVAPP_EXPORT PluginInfo
{
public:
    /// A record with the one entry "QtVersion": the version, as text, of the Qt that is running.
    PluginInfo();
    /// A record of what another holds, or held.
    /// @{
    PluginInfo(const PluginInfo& other);
    PluginInfo(PluginInfo&& other) noexcept;
    PluginInfo& operator=(const PluginInfo& other);
    PluginInfo& operator=(PluginInfo&& other) noexcept;
    /// @}
    ~PluginInfo();

    /// The value of `key`, even an invalid one; `defaultValue` when there is no such key.
    QVariant get(const QString& key, const QVariant& defaultValue = QVariant()) const;
    /// Adds a value, or replaces the one that `key` has.
    void set(const QString& key, const QVariant& value);
    /// All keys, in ascending order by code unit: capitals before small letters.
    QStringList keys() const;

private:
    QMap<QString, QVariant> _values;
};

} // namespace App
