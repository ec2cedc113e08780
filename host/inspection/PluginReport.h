#pragma once

#include <QJsonObject>
#include <QString>

namespace Host {

/// What there is to say about one plug-in file: a row of the table, and an object of the JSON, that
/// `ovapp-host plugins` prints.
class PluginReport
{
public:
    /// A report without a verdict.
    explicit PluginReport(const QString& file);

    /// Adds parts, or replaces them.
    void add(const QJsonObject& parts);
    /// Takes a part out; null if it is not there.
    QString take(const QString& key);

    /// Whether the program can do nothing with the file, whatever board is in use.
    bool isUnusable() const;
    /// A part as a text; empty when it is not there or null.
    QString text(const QString& key) const;
    /// How many milliseconds something took; a dash for what has not been done.
    QString time(const QString& key) const;
    const QJsonObject& toJson() const { return _parts; }

private:
    QJsonObject _parts;
};

/// The parts of a report that are a verdict: one word for programs, and for people whether the
/// plug-in is accepted, and if not, why, and what its author can do.
QJsonObject verdictParts(const QString& word, const QString& explanation);

} // namespace Host
