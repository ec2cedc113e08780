#pragma once

#include <support/Literals.h>

#include <ovcore/Settings.h>
#include <plugins/PluginInterface.h>

#include <stdexcept>

/// Records its calls in the run value "calls". The run value "throw" selects a function that
/// throws: "P start" a std::exception, "P start!" another type. Plug-ins and tests share these run
/// values.
class RecordingPlugin : public QObject, public App::PluginInterface
{
    Q_OBJECT
    Q_INTERFACES(App::PluginInterface)

public:
    RecordingPlugin(const QString& name, quint64 identifier, int boards)
        : _name(name), _identifier(identifier), _boards(boards)
    {
    }
    ~RecordingPlugin() override { addCall("destroy"_s); }

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

    /// Returns the calls recorded since the last call of this function.
    static QStringList takeCalls()
    {
        const QStringList calls = Core::Settings::instance().runValue("calls"_s).toStringList();
        Core::Settings::instance().setRunValue("calls"_s, QStringList());
        return calls;
    }

protected:
    void throwIfRequested(const QString& call) const
    {
        const QString requested = Core::Settings::instance().runValue("throw"_s).toString();
        if (requested == _name + u' ' + call)
            throw std::runtime_error("no 100% " + call.toStdString());
        if (requested == _name + u' ' + call + u'!')
            throw 100;
    }

private:
    void addCall(const QString& call) const
    {
        const QStringList calls = takeCalls() + QStringList(_name + u' ' + call);
        Core::Settings::instance().setRunValue("calls"_s, calls);
    }
    void record(const QString& call) const
    {
        addCall(call);
        throwIfRequested(call);
    }

    const QString _name;
    const quint64 _identifier;
    const int _boards;
};

/// Returns "P x", "P y", "Q x", "Q y" for the plug-ins "P Q" and the calls of each, "x y".
inline QStringList calls(const char* plugins, const char* names)
{
    QStringList all;
    for (const QString& plugin : words(plugins)) {
        for (const QString& name : words(names))
            all += plugin + u' ' + name;
    }
    return all;
}
