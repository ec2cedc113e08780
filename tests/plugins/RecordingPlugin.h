#pragma once

#include <support/Literals.h>

#include <ovcore/Settings.h>
#include <plugins/PluginInterface.h>

/// Writes down what is done with it, in the run value "calls", where plug-ins and tests meet.
class RecordingPlugin : public QObject, public App::PluginInterface
{
    Q_OBJECT
    Q_INTERFACES(App::PluginInterface)

public:
    RecordingPlugin(const QString& name, quint64 identifier, int boards)
        : _name(name), _identifier(identifier), _boards(boards)
    {
    }
    ~RecordingPlugin() override { record("destroy"_s); }

    quint64 pluginID() const override { return record("id"_s), _identifier; }
    int supportedBoardTypes() const override { return record("boards"_s), _boards; }
    void start() override { record("start"_s); }
    void stop() override { record("stop"_s); }
    App::PluginInfo pluginInfo() const override
    {
        record("info"_s);
        App::PluginInfo info;
        info.set("Name"_s, _name);
        return info;
    }

    /// What was written down since the last call.
    static QStringList takeCalls()
    {
        const QStringList calls = Core::Settings::instance().runValue("calls"_s).toStringList();
        Core::Settings::instance().setRunValue("calls"_s, QStringList());
        return calls;
    }

private:
    void record(const QString& call) const
    {
        const QStringList calls = takeCalls() + QStringList(_name + u' ' + call);
        Core::Settings::instance().setRunValue("calls"_s, calls);
    }

    const QString _name;
    const quint64 _identifier;
    const int _boards;
};

/// "P x", "P y", "Q x", "Q y" for the plug-ins "P Q" and what is done with each, "x y".
inline QStringList calls(const char* plugins, const char* names)
{
    QStringList all;
    for (const QString& plugin : words(plugins)) {
        for (const QString& name : words(names))
            all += plugin + u' ' + name;
    }
    return all;
}
