#include <KPluginFactory>

/// The smallest possible plug-in for KPluginFactory.
class KdePlugin : public QObject
{
    Q_OBJECT

public:
    KdePlugin(QObject* parent, const QVariantList&) : QObject(parent) {}
};

K_PLUGIN_CLASS(KdePlugin)

#include "KdePlugin.moc"
