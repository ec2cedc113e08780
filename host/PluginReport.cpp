#include "PluginReport.h"

#include "Output.h"

#include <ovcore/BoardEthDescHandler.h>
#include <ovcore/Settings.h>
#include <plugins/PluginInterface.h>

#include <QDir>
#include <QElapsedTimer>
#include <QJsonObject>

namespace Host {

namespace {

using Verdict = App::PluginLoader::Verdict;

template <typename Call>
double millisecondsOf(Call call)
{
    QElapsedTimer timer;
    timer.start();
    call();
    return static_cast<double>(timer.nsecsElapsed()) / 1e6;
}

QString hexadecimal(quint64 number)
{
    return QLatin1String("0x") + QString::number(number, 16);
}

/// One word for programs.
QString wordFor(Verdict verdict)
{
    switch (verdict) {
    case Verdict::Accepted:
        return QStringLiteral("accepted");
    case Verdict::NoPlugin:
        return QStringLiteral("no-plugin");
    case Verdict::NoInterface:
        return QStringLiteral("no-interface");
    case Verdict::OtherBoard:
        return QStringLiteral("other-board");
    case Verdict::NoIdentifier:
        return QStringLiteral("no-identifier");
    }
    return QString();
}

QString explain(Verdict verdict, const QString& boards, const QString& loadError)
{
    switch (verdict) {
    case Verdict::Accepted:
        return QStringLiteral("accepted");
    case Verdict::NoPlugin:
        return QStringLiteral("refused: Qt cannot load it as a plug-in: %1").arg(loadError);
    case Verdict::NoInterface:
        return QStringLiteral("refused: its root object does not answer to \"%1\"; name "
                              "App::PluginInterface in its Q_INTERFACES")
            .arg(QLatin1String(qobject_interface_iid<App::PluginInterface*>()));
    case Verdict::OtherBoard:
        return QStringLiteral("refused: supportedBoardTypes() is %1, which has no bit in common "
                              "with the type of the board in use, %2")
            .arg(boards, hexadecimal(static_cast<quint32>(
                             Core::BoardEthDescHandler::instance()->currentBoardEthDescType())));
    case Verdict::NoIdentifier:
        return QStringLiteral("refused: pluginID() is 0; give the plug-in an identifier");
    }
    return QString();
}

/// Qt's own words, or ours where Qt was not asked to load.
QString loadError(const QPluginLoader& loader)
{
    const QString error = loader.errorString();
    if (!loader.fileName().isEmpty() && loader.metaData().isEmpty())
        return error + QStringLiteral("; is Q_PLUGIN_METADATA in its class?");
    return error == QPluginLoader().errorString()
               ? QStringLiteral("it is no library of this system, or cut short")
               : error;
}

} // namespace

PluginReport::PluginReport(const QString& file) : _file(file), _verdict(Verdict::NoPlugin)
{
    // A symbol that is missing would otherwise end the program when it is first called.
    _loader.setLoadHints(QLibrary::ResolveAllSymbolsHint | QLibrary::PreventUnloadHint);
    const LastWords words = lastWords("loaded and asked what it is");
    QObject* object = nullptr;
    _loadTime = millisecondsOf(
        [this, &object] { object = App::PluginLoader::rootObjectOf(_file, _loader); });
    _verdict = App::PluginLoader::verdictOn(object);
    if (const auto* plugin = qobject_cast<App::PluginInterface*>(object)) {
        _boards = hexadecimal(static_cast<quint32>(plugin->supportedBoardTypes()));
        _identifier = hexadecimal(plugin->pluginID());
        if (isAccepted())
            _name = plugin->pluginInfo().get(QStringLiteral("Name")).toString();
    }
    _explanation = explain(_verdict, _boards, loadError(_loader));
}

bool PluginReport::isAccepted() const
{
    return _verdict == Verdict::Accepted;
}

QString PluginReport::fileName() const
{
    return QDir(App::PluginLoader::pluginsPath()).relativeFilePath(_file);
}

QString PluginReport::name() const
{
    return _name;
}

QString PluginReport::identifier() const
{
    return _identifier;
}

QString PluginReport::boards() const
{
    return _boards;
}

QString PluginReport::verdict() const
{
    return _explanation;
}

void PluginReport::start()
{
    if (!isAccepted())
        return;
    const LastWords words = lastWords("started");
    auto* plugin = qobject_cast<App::PluginInterface*>(_loader.instance());
    _startTime = millisecondsOf([plugin] { plugin->start(); });
}

void PluginReport::stop()
{
    if (!isAccepted())
        return;
    const LastWords words = lastWords("stopped");
    _stopTime = millisecondsOf([this] { App::PluginLoader::unloadPlugin(_loader.instance()); });
}

void PluginReport::unload()
{
    const LastWords words = lastWords("unloaded");
    _loader.unload();
}

LastWords PluginReport::lastWords(const char* isDone) const
{
    return {failureLine(QStringLiteral("%1 has ended the program while it was %2")
                            .arg(quoted(fileName()), QLatin1String(isDone))),
            JobFailed};
}

QJsonObject PluginReport::toJson() const
{
    const auto orNull = [](const QString& text) {
        return text.isEmpty() ? QJsonValue() : QJsonValue(text);
    };
    QJsonObject object{{QStringLiteral("file"), _file},
                       {QStringLiteral("name"), orNull(_name)},
                       {QStringLiteral("identifier"), orNull(_identifier)},
                       {QStringLiteral("boards"), orNull(_boards)},
                       {QStringLiteral("accepted"), isAccepted()},
                       {QStringLiteral("verdict"), wordFor(_verdict)},
                       {QStringLiteral("explanation"), _explanation}};
    const auto insertTime = [&object](const QString& key, std::optional<double> time) {
        if (time)
            object.insert(key, *time);
    };
    insertTime(QStringLiteral("load_ms"), _loadTime);
    insertTime(QStringLiteral("start_ms"), _startTime);
    insertTime(QStringLiteral("stop_ms"), _stopTime);
    return object;
}

} // namespace Host
