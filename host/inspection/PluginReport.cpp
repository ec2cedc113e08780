#include "inspection/PluginReport.h"

namespace Host {

PluginReport::PluginReport(const QString& file)
    : _parts{{QStringLiteral("file"), file},
             {QStringLiteral("name"), QJsonValue()},
             {QStringLiteral("identifier"), QJsonValue()},
             {QStringLiteral("boards"), QJsonValue()}}
{
}

void PluginReport::add(const QJsonObject& parts)
{
    for (auto part = parts.begin(); part != parts.end(); ++part)
        _parts.insert(part.key(), part.value());
}

QString PluginReport::take(const QString& key)
{
    return _parts.take(key).toString();
}

bool PluginReport::isUnusable() const
{
    const QString verdict = text(QStringLiteral("verdict"));
    return verdict != QLatin1String("accepted") && verdict != QLatin1String("other-board");
}

QString PluginReport::text(const QString& key) const
{
    return _parts.value(key).toString();
}

QString PluginReport::time(const QString& key) const
{
    const QJsonValue time = _parts.value(key);
    return time.isDouble() ? QString::number(time.toDouble(), 'f', 2) : QStringLiteral("-");
}

QJsonObject verdictParts(const QString& verdict, const QString& reason)
{
    const bool isAccepted = verdict == QLatin1String("accepted");
    QString explanation = QStringLiteral("accepted");
    if (verdict == QLatin1String("other-board"))
        explanation = QLatin1String("for another board: ") + reason;
    else if (!isAccepted)
        explanation = QLatin1String("cannot be used: ") + reason;
    return {{QStringLiteral("accepted"), isAccepted},
            {QStringLiteral("verdict"), verdict},
            {QStringLiteral("explanation"), explanation}};
}

} // namespace Host
