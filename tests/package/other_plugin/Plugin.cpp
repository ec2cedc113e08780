#include <QObject>

class Plugin : public QObject
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "com.quillmere.beamforge.PluginInterface/1.0")
};

#include "Plugin.moc"
