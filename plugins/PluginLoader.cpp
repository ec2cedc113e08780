#include <plugins/PluginLoader.h>

#include <plugins/PluginFiles.h>
#include <plugins/PluginInterface.h>

#include <ovcore/BoardEthDescHandler.h>
#include <ovcore/ConsoleSingleton.h>
#include <ovcore/Settings.h>
#include <system/LibraryFile.h>

#include <QFileInfo>
#include <QPluginLoader>

#include <algorithm>
#include <memory>

namespace App {

QStringList PluginLoader::_pluginFiles;
QList<PluginInfo> PluginLoader::_pluginInfos;
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
    const QStringList files = pluginFiles();
    for (const QString& file : files) {
        if (isDiscard(file))
            continue;
        auto loader = std::make_unique<QPluginLoader>();
        if (loadPlugin(rootObjectOf(file, *loader), startPlugins, file))
            _pluginLoaders.append(loader.release());
        else
            loader->unload();
    }
}

bool PluginLoader::isLoaded(const QString& file)
{
    // A loader's name of its file is the canonical one. To ask the file system about each of them
    // would take seconds where there are a thousand.
    const QFileInfo info(file);
    const QString path = info.exists() ? info.canonicalFilePath() : info.absoluteFilePath();
    return std::any_of(_pluginLoaders.cbegin(), _pluginLoaders.cend(),
                       [&path](const QPluginLoader* loader) { return loader->fileName() == path; });
}

QObject* PluginLoader::rootObjectOf(const QString& file, QPluginLoader& loader)
{
    if (!System::libraryFileProblem(file).isEmpty())
        return nullptr;
    loader.setFileName(file);
    loader.setLoadHints(loader.loadHints() | QLibrary::ResolveAllSymbolsHint);
    return loader.instance();
}

bool PluginLoader::loadPlugin(QObject* object, bool startPlugins, const QString&)
{
    if (verdictOn(object) != Verdict::Accepted)
        return false;
    auto* plugin = qobject_cast<PluginInterface*>(object);
    _pluginInfos.append(plugin->pluginInfo());
    if (startPlugins)
        plugin->start();
    return true;
}

PluginLoader::Verdict PluginLoader::verdictOn(QObject* object)
{
    if (!object)
        return Verdict::NoPlugin;
    const auto* plugin = qobject_cast<PluginInterface*>(object);
    if (!plugin)
        return Verdict::NoInterface;
    if ((plugin->supportedBoardTypes() & currentBoardType()) == 0)
        return Verdict::OtherBoard;
    if (plugin->pluginID() == 0)
        return Verdict::NoIdentifier;
    return Verdict::Accepted;
}

void PluginLoader::unloadPlugin(const QString& file)
{
    if (!QFileInfo::exists(file) || _pluginLoaders.isEmpty())
        return;
    QPluginLoader* loader = _pluginLoaders.last();
    if (QFileInfo(loader->fileName()) != QFileInfo(file))
        return;
    unloadPlugin(loader->instance());
    loader->unload();
    delete loader;
    _pluginLoaders.removeLast();
}

void PluginLoader::unloadPlugin(QObject* object)
{
    if (auto* plugin = qobject_cast<PluginInterface*>(object))
        plugin->stop();
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
