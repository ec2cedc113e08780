#include <plugins/PluginLoader.h>

#include <plugins/LoadError.h>
#include <plugins/PluginFiles.h>
#include <plugins/PluginInterface.h>

#include <ovcore/BoardEthDescHandler.h>
#include <ovcore/ConsoleSingleton.h>
#include <ovcore/Settings.h>
#include <system/LibraryFile.h>

#include <QFileInfo>
#include <QPluginLoader>

#include <exception>
#include <memory>
#include <utility>

namespace App {

QStringList PluginLoader::_pluginFiles;
QList<PluginInfo> PluginLoader::_pluginInfos;
QList<PluginRecord> PluginLoader::_records;
PluginLoader::ProgressHandler PluginLoader::_progressHandler;
QList<QPluginLoader*> PluginLoader::_pluginLoaders;

namespace {

QString valueKey()
{
    return QStringLiteral("Plugin/value");
}

/// The base names of files that are never loaded.
const QStringList& discardList()
{
    static const QStringList baseNames;
    return baseNames;
}

int currentBoardType()
{
    const Core::BoardEthDescHandler* board = Core::BoardEthDescHandler::instance();
    return board ? board->currentBoardEthDescType() : 0;
}

QString hexadecimal(int boardTypes)
{
    return QLatin1String("0x") + QString::number(static_cast<quint32>(boardTypes), 16);
}

/// Calls a function of a plug-in. If it throws, logs a warning with the name of the plug-in and
/// returns the failure as a sentence; otherwise returns an empty string.
QString callPlugin(const QString& plugin, const char* function, const std::function<void()>& call)
{
    QString text;
    try {
        call();
        return QString();
    } catch (const std::exception& exception) {
        text = QString::fromLocal8Bit(exception.what());
    } catch (...) {
        text = QStringLiteral("of an unknown type");
    }
    QString sentence =
        QStringLiteral("%1 threw an exception: %2").arg(QLatin1String(function), text);
    Core::ConsoleSingleton::instance().warning("PluginLoader::callPlugin: %s: %s",
                                               plugin.toLocal8Bit().constData(),
                                               sentence.toLocal8Bit().constData());
    return sentence;
}

/// Returns the name of a plug-in in warnings.
QString nameOf(const QString& filePath, const QObject& object)
{
    return filePath.isEmpty() ? QString::fromLatin1(object.metaObject()->className()) : filePath;
}

/// Calls the queries of the root object, which is not null, and sets the verdict and the reason.
void setVerdict(PluginRecord& record)
{
    const QString name = nameOf(record.filePath, *record.rootObject);
    const auto decide = [&record](PluginVerdict verdict, const QString& reason) {
        record.verdict = verdict;
        record.reason = reason;
    };

    const auto* plugin = qobject_cast<PluginInterface*>(record.rootObject);
    if (!plugin) {
        return decide(PluginVerdict::NoInterface,
                      QStringLiteral("its root object does not implement \"%1\"; name "
                                     "App::PluginInterface in its Q_INTERFACES")
                          .arg(QLatin1String(qobject_interface_iid<PluginInterface*>())));
    }
    int boardTypes = 0;
    QString failure = callPlugin(name, "supportedBoardTypes()",
                                 [&] { boardTypes = plugin->supportedBoardTypes(); });
    if (!failure.isEmpty())
        return decide(PluginVerdict::Exception, failure);
    if ((boardTypes & currentBoardType()) == 0) {
        return decide(PluginVerdict::OtherBoard,
                      QStringLiteral("supportedBoardTypes() is %1, which has no bit in common "
                                     "with the type of the board in use, %2")
                          .arg(hexadecimal(boardTypes), hexadecimal(currentBoardType())));
    }
    quint64 identifier = 0;
    failure = callPlugin(name, "pluginID()", [&] { identifier = plugin->pluginID(); });
    if (!failure.isEmpty())
        return decide(PluginVerdict::Exception, failure);
    if (identifier == 0) {
        return decide(PluginVerdict::NoIdentifier,
                      QStringLiteral("pluginID() is 0; give the plug-in an identifier"));
    }
    decide(PluginVerdict::Accepted, QString());
}

void stop(QObject* object, const QString& filePath)
{
    if (auto* plugin = qobject_cast<PluginInterface*>(object))
        callPlugin(nameOf(filePath, *object), "stop()", [plugin] { plugin->stop(); });
}

} // namespace

QString PluginLoader::pluginsPath()
{
    const QString path = Core::Settings::instance().pluginDirPath();
    return QFileInfo::exists(path) ? path : QString();
}

QString PluginLoader::pluginSuffix()
{
    return QStringLiteral("dll");
}

QStringList PluginLoader::pluginFiles()
{
    if (!_pluginFiles.isEmpty())
        return _pluginFiles;
    const QString path = pluginsPath();
    if (path.isEmpty())
        return QStringList();
    _pluginFiles = findPluginFiles(path, pluginSuffix());
    return _pluginFiles;
}

bool PluginLoader::isDiscard(const QString& file)
{
    const QString baseName = QFileInfo(file).baseName();
    if (!discardList().contains(baseName))
        return false;
    Core::ConsoleSingleton::instance().warning("PluginLoader::isDiscard:: %s",
                                               baseName.toLatin1().constData());
    return true;
}

void PluginLoader::loadPlugins(bool startPlugins)
{
    _pluginFiles.clear();
    _pluginInfos.clear();
    _records.clear();
    const QStringList files = pluginFiles();
    const ProgressHandler reportProgress = _progressHandler;
    for (const QString& file : files) {
        if (reportProgress)
            reportProgress(file, static_cast<int>(_records.size()), static_cast<int>(files.size()));
        PluginRecord record;
        if (isDiscard(file)) {
            record.filePath = file;
            record.reason = QStringLiteral("a file with this name is never loaded");
        } else {
            auto loader = std::make_unique<QPluginLoader>();
            record = recordOf(file, *loader);
            if (accept(record, startPlugins))
                _pluginLoaders.append(loader.release());
            else
                loader->unload();
        }
        _records.append(record);
    }
}

void PluginLoader::setProgressHandler(ProgressHandler handler)
{
    _progressHandler = std::move(handler);
}

QList<PluginRecord> PluginLoader::records()
{
    return _records;
}

QString PluginLoader::verdictName(Verdict verdict)
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
    case Verdict::Exception:
        return QStringLiteral("exception");
    }
    return QString();
}

QObject* PluginLoader::rootObjectOf(const QString& file, QPluginLoader& loader)
{
    return recordOf(file, loader).rootObject;
}

PluginRecord PluginLoader::recordOf(const QString& file, QPluginLoader& loader)
{
    PluginRecord record;
    record.filePath = file;
    record.reason = System::libraryFileError(file);
    if (!record.reason.isEmpty())
        return record;
    loader.setFileName(file);
    loader.setLoadHints(loader.loadHints() | QLibrary::ResolveAllSymbolsHint);
    // An exception must not leave the system's loader, which would keep its lock.
    const auto load = [&loader]() noexcept { return loader.load(); };
    // Without load(), instance() adds no reference to a file that another loader has loaded.
    if (load()) {
        record.reason =
            callPlugin(file, "its constructor", [&] { record.rootObject = loader.instance(); });
    }
    if (!record.reason.isEmpty())
        record.verdict = Verdict::Exception;
    else if (!record.rootObject)
        record.reason = loadError(loader);
    return record;
}

void PluginLoader::inspect(PluginRecord& record)
{
    if (!record.rootObject)
        return;
    setVerdict(record);
    if (record.verdict != Verdict::Accepted)
        return;
    const auto* plugin = qobject_cast<PluginInterface*>(record.rootObject);
    record.reason = callPlugin(nameOf(record.filePath, *record.rootObject), "pluginInfo()",
                               [&] { record.info = plugin->pluginInfo(); });
    if (!record.reason.isEmpty())
        record.verdict = Verdict::Exception;
}

bool PluginLoader::accept(PluginRecord& record, bool startPlugins)
{
    inspect(record);
    if (record.verdict != Verdict::Accepted)
        return false;
    _pluginInfos.append(record.info);
    if (startPlugins) {
        auto* plugin = qobject_cast<PluginInterface*>(record.rootObject);
        record.reason = callPlugin(nameOf(record.filePath, *record.rootObject), "start()",
                                   [plugin] { plugin->start(); });
    }
    return true;
}

bool PluginLoader::loadPlugin(QObject* object, bool startPlugins, const QString& filePath)
{
    PluginRecord record;
    record.filePath = filePath;
    record.rootObject = object;
    return accept(record, startPlugins);
}

PluginLoader::Verdict PluginLoader::verdictOn(QObject* object)
{
    PluginRecord record;
    record.rootObject = object;
    if (object)
        setVerdict(record);
    return record.verdict;
}

void PluginLoader::unloadPlugin(const QString& file)
{
    if (!QFileInfo::exists(file) || _pluginLoaders.isEmpty())
        return;
    QPluginLoader* loader = _pluginLoaders.last();
    if (QFileInfo(loader->fileName()) != QFileInfo(file))
        return;
    stop(loader->instance(), file);
    loader->unload();
    delete loader;
    _pluginLoaders.removeLast();
}

void PluginLoader::unloadPlugin(QObject* object)
{
    stop(object, QString());
}

void PluginLoader::unloadPlugins()
{
    const QStringList files = _pluginFiles;
    for (auto file = files.crbegin(); file != files.crend(); ++file)
        unloadPlugin(*file);
}

int PluginLoader::pluginCount()
{
    return static_cast<int>(_pluginFiles.count());
}

PluginInfo PluginLoader::pluginInfoOf(int index)
{
    return _pluginInfos.value(index);
}

unsigned long long PluginLoader::readPluginIDValue()
{
    return Core::Settings::instance().value(valueKey(), defaultPluginValue()).toULongLong();
}

bool PluginLoader::writePluginIDValue(unsigned long long value)
{
    if (readPluginIDValue() == value)
        return false;
    Core::Settings::instance().setValue(valueKey(), value);
    return true;
}

void PluginLoader::initPluginIDValue()
{
    Core::Settings::instance().setRunValue(QStringLiteral("PluginIDValue"), readPluginIDValue());
}

unsigned long long PluginLoader::defaultPluginValue()
{
    return 0;
}

} // namespace App
