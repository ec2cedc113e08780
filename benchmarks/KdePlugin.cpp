#include <KPluginFactory>

/// As small as a plug-in of KDE's can be.
class KdePlugin : public QObject
{
    Q_OBJECT

public:
    KdePlugin(QObject* parent, const QVariantList&) : QObject(parent) {}
};

K_PLUGIN_CLASS(KdePlugin)

#include "KdePlugin.moc"
