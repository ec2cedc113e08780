#include "RecordingPlugin.h"

/// Not stored in the file.
static volatile char buffer[1 << 20];

class LoadablePlugin : public RecordingPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "com.quillmere.beamforge.PluginInterface/1.0")

public:
    LoadablePlugin() : RecordingPlugin(QStringLiteral(PLUGIN_NAME), PLUGIN_ID, PLUGIN_BOARD_TYPES)
    {
        buffer[0] = 1;
        throwIfRequested("construct"_s);
    }
};

#include "LoadablePlugin.moc"
