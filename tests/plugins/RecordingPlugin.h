#pragma once

#include <support/Literals.h>

#include <ovcore/Settings.h>
#include <plugins/PluginInterface.h>

#include <QStringList>

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
        const QStringList calls = Core::Settings::instance().runValue(key()).toStringList();
        Core::Settings::instance().setRunValue(key(), QStringList());
        return calls;
    }

private:
    static QString key() { return "calls"_s; }
    void record(const QString& call) const
    {
        const QStringList calls = Core::Settings::instance().runValue(key()).toStringList();
        Core::Settings::instance().setRunValue(key(), calls + QStringList(_name + u' ' + call));
    }

    const QString _name;
    const quint64 _identifier;
    const int _boards;
};
