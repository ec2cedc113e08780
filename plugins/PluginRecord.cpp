#include <plugins/PluginRecord.h>

namespace App {

QString PluginRecord::verdictName() const
{
    switch (verdict) {
    case Verdict::Accepted:
        return QStringLiteral("accepted");
    case Verdict::LeftOut:
        return QStringLiteral("left-out");
    case Verdict::NoPlugin:
        return QStringLiteral("no-plugin");
    case Verdict::OtherVersion:
        return QStringLiteral("other-version");
    case Verdict::NoInterface:
        return QStringLiteral("no-interface");
    case Verdict::OtherBoard:
        return QStringLiteral("other-board");
    case Verdict::NoIdentifier:
        return QStringLiteral("no-identifier");
    case Verdict::Exception:
        return QStringLiteral("exception");
    }
    return QString();
}

} // namespace App
