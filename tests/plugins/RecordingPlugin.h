#pragma once

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
    ~RecordingPlugin() override { record(QStringLiteral("destroy")); }

    quint64 pluginID() const override { return record(QStringLiteral("id")), _identifier; }
    int supportedBoardTypes() const override { return record(QStringLiteral("boards")), _boards; }
    void start() override { record(QStringLiteral("start")); }
    void stop() override { record(QStringLiteral("stop")); }
    App::PluginInfo pluginInfo() const override
    {
        record(QStringLiteral("info"));
        App::PluginInfo info;
        info.set(QStringLiteral("Name"), _name);
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
    static QString key() { return QStringLiteral("calls"); }
    void record(const QString& call) const
    {
        const QStringList calls = Core::Settings::instance().runValue(key()).toStringList();
        Core::Settings::instance().setRunValue(key(), calls + QStringList(_name + u' ' + call));
    }

    const QString _name;
    const quint64 _identifier;
    const int _boards;
};
