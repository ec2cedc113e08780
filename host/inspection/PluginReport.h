#pragma once

#include <QJsonObject>
#include <QString>

namespace Host {

/// The result of the inspection of one plug-in file: a row of the table and an object of the JSON
/// that `ovapp-host plugins` prints.
class PluginReport
{
public:
    /// Creates a report without a verdict.
    explicit PluginReport(const QString& file);

    /// Adds or replaces parts.
    void add(const QJsonObject& parts);
    /// Removes a part and returns it as text; empty if there is none.
    QString take(const QString& key);

    /// Returns true unless the plug-in is accepted or is for another board.
    bool isUnusable() const;
    /// Returns a part as text; empty if there is none or it is null.
    QString text(const QString& key) const;
    /// Returns a time in ms as text; a dash if there is none.
    QString time(const QString& key) const;
    const QJsonObject& toJson() const { return _parts; }

private:
    QJsonObject _parts;
};

/// Returns the parts of a report for a verdict: the verdict itself, one word for programs, and an
/// explanation for users, which contains the reason.
QJsonObject verdictParts(const QString& verdict, const QString& reason);

} // namespace Host
