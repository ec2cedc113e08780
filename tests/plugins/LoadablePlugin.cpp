#include "RecordingPlugin.h"

class LoadablePlugin : public RecordingPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "com.quillmere.beamforge.PluginInterface/1.0")

public:
    LoadablePlugin() : RecordingPlugin(QStringLiteral(PLUGIN_NAME), PLUGIN_ID, PLUGIN_BOARD_TYPES)
    {
    }
};

#include "LoadablePlugin.moc"
