#pragma once

#include <ovapp_export.h>

#include <QMap>
#include <QString>
#include <QStringList>
#include <QVariant>

namespace App {

/// The description of a plug-in: named values, which the library passes on unchanged. By
/// convention, the texts "Name", "Version", "Vendor" and "Description" are for users. Copies are
/// cheap (implicitly shared). A moved-from object is empty. Reentrant.
class OVAPP_EXPORT PluginInfo
{
public:
    /// Creates a description with one value, "QtVersion": the version of Qt at run time, as text.
    PluginInfo();

    /// Returns the value of `key`, which may be invalid, or `defaultValue` if there is no such key.
    QVariant get(const QString& key, const QVariant& defaultValue = QVariant()) const;
    /// Adds or replaces the value of `key`.
    void set(const QString& key, const QVariant& value);
    /// Returns all keys in ascending order of code units: upper case before lower case.
    QStringList keys() const;

private:
    QMap<QString, QVariant> _values;
};

} // namespace App
