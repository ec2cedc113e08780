#include <plugins/PluginLoader.h>

#include <plugins/PluginFiles.h>
#include <plugins/PluginInterface.h>

#include <ovcore/BoardEthDescHandler.h>
#include <ovcore/ConsoleSingleton.h>
#include <ovcore/Settings.h>
#include <system/LibraryFile.h>

#include <QElapsedTimer>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>
#include <QPluginLoader>
#include <QScopeGuard>
#include <QVersionNumber>

#include <algorithm>
#include <exception>
#include <memory>
#include <utility>

namespace App {

QStringList PluginLoader::_pluginFiles;
QList<PluginInfo> PluginLoader::_pluginInfos;
QList<PluginRecord> PluginLoader::_records;
PluginLoader::StepHandler PluginLoader::_stepHandler;
PluginLoader::FileFilter PluginLoader::_fileFilter;
QList<QPluginLoader*> PluginLoader::_pluginLoaders;

namespace {

using Verdict = PluginRecord::Verdict;

const QLatin1String valueKey("Plugin/value");

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

/// Calls the queries of the root object, which is not null, and sets the parts of the record that
/// depend on them.
void query(PluginRecord& record)
{
    const QString name = nameOf(record.filePath, *record.rootObject);
    const auto refuse = [&record](Verdict verdict, const QString& reason) {
        record.verdict = verdict;
        record.reason = reason;
    };
    // Returns false if the function throws.
    const auto call = [&](const char* function, const std::function<void()>& callFunction) {
        const QString failure = callPlugin(name, function, callFunction);
        if (!failure.isEmpty())
            refuse(Verdict::Exception, failure);
        return failure.isEmpty();
    };

    const auto* plugin = qobject_cast<PluginInterface*>(record.rootObject);
    if (!plugin) {
        return refuse(Verdict::NoInterface,
                      QStringLiteral("its root object does not implement \"%1\"; name "
                                     "App::PluginInterface in its Q_INTERFACES")
                          .arg(QLatin1String(qobject_interface_iid<PluginInterface*>())));
    }
    if (!call("supportedBoardTypes()", [&] { record.boardTypes = plugin->supportedBoardTypes(); }))
        return;
    if ((record.boardTypes & currentBoardType()) == 0) {
        return refuse(Verdict::OtherBoard,
                      QStringLiteral("supportedBoardTypes() is %1, which has no bit in common "
                                     "with the type of the board in use, %2")
                          .arg(hexadecimal(record.boardTypes), hexadecimal(currentBoardType())));
    }
    if (!call("pluginID()", [&] { record.identifier = plugin->pluginID(); }))
        return;
    if (record.identifier == 0) {
        return refuse(Verdict::NoIdentifier,
                      QStringLiteral("pluginID() is 0; give the plug-in an identifier"));
    }
    if (call("pluginInfo()", [&] { record.info = plugin->pluginInfo(); }))
        record.verdict = Verdict::Accepted;
}

/// Starts or stops the root object, and returns the failure as `callPlugin` does.
QString start(QObject& object, const QString& filePath)
{
    auto* plugin = qobject_cast<PluginInterface*>(&object);
    return callPlugin(nameOf(filePath, object), "start()", [plugin] { plugin->start(); });
}

QString stop(QObject* object, const QString& filePath)
{
    auto* plugin = qobject_cast<PluginInterface*>(object);
    if (!plugin)
        return QString();
    return callPlugin(nameOf(filePath, *object), "stop()", [plugin] { plugin->stop(); });
}

/// Returns the version of ovapp in the metadata of a file, as moc has stored its option -M; null if
/// there is none.
QVersionNumber versionOf(const QPluginLoader& loader)
{
    const QString text = loader.metaData().value(QLatin1String("ovapp")).toArray().at(0).toString();
    const QVersionNumber version = QVersionNumber::fromString(text);
    return version.toString() == text ? version : QVersionNumber();
}

/// Says for which version a file is built.
QString versionText(const PluginRecord& record)
{
    return QStringLiteral("it is built for ovapp %1, and this program uses ovapp %2")
        .arg(record.builtFor, QLatin1String(OVAPP_VERSION));
}

double milliseconds(const QElapsedTimer& timer)
{
    return static_cast<double>(timer.nsecsElapsed()) / 1e6;
}

/// Returns the major version of Qt that a library requires if it differs from this program's,
/// otherwise 0. Searches the file for the names of the libraries that it links to.
int otherQtOf(const QString& file)
{
    const auto needs = [&file](int qt) {
        return System::fileContains(file, "Qt" + QByteArray::number(qt) + "Core");
    };
    if (needs(QT_VERSION_MAJOR))
        return 0;
    for (const int qt : {5, 6, 7}) {
        if (needs(qt))
            return qt;
    }
    return 0;
}

/// Returns why the file could not be loaded, in one sentence: Qt's own text, or the version of Qt
/// that the file requires if it differs from this program's.
QString loadError(const QPluginLoader& loader)
{
    if (const int qt = otherQtOf(loader.fileName())) {
        return QStringLiteral("it is built with Qt %1, and this program with Qt %2")
            .arg(qt)
            .arg(QT_VERSION_MAJOR);
    }
    const QString reason = QLatin1String("Qt cannot load it: ") + loader.errorString();
    return loader.metaData().isEmpty()
               ? reason + QLatin1String("; is Q_PLUGIN_METADATA in its class?")
               : reason;
}

/// Loads the file of the record, and sets the root object, or the verdict and the reason if there
/// is none.
void load(PluginRecord& record, QPluginLoader& loader)
{
    loader.setLoadHints(loader.loadHints() | QLibrary::ResolveAllSymbolsHint);
    // An exception must not leave the system's loader, which would keep its lock.
    const auto loadLibrary = [&loader]() noexcept { return loader.load(); };
    // Without load(), instance() adds no reference to a file that another loader has loaded.
    if (loadLibrary()) {
        record.reason = callPlugin(record.filePath, "its constructor",
                                   [&] { record.rootObject = loader.instance(); });
    }
    if (!record.reason.isEmpty()) {
        record.verdict = Verdict::Exception;
    } else if (!record.rootObject) {
        record.reason = loadError(loader);
        const QVersionNumber own = QVersionNumber::fromString(QStringLiteral(OVAPP_VERSION));
        const QVersionNumber other = QVersionNumber::fromString(record.builtFor);
        if (other.minorVersion() > own.minorVersion())
            record.reason.prepend(versionText(record) + QLatin1String("; "));
    }
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

void PluginLoader::setFileFilter(FileFilter filter)
{
    _fileFilter = std::move(filter);
}

void PluginLoader::loadPlugins(bool startPlugins)
{
    _pluginFiles.clear();
    _pluginInfos.clear();
    _records.clear();
    for (QPluginLoader* loader : qAsConst(_pluginLoaders))
        loader->setObjectName(QString());
    const QStringList files = pluginFiles();
    for (const QString& file : files)
        loadFile(file, startPlugins);
}

PluginRecord PluginLoader::loadFile(const QString& file, bool startPlugin)
{
    PluginRecord record;
    record.filePath = QFileInfo(file).absoluteFilePath();
    const auto refuse = [&record](Verdict verdict, const QString& reason) {
        record.verdict = verdict;
        record.reason = reason;
        addRecord(record);
        return record;
    };

    const auto isSame = [&record](const QPluginLoader* other) {
        return other->objectName() == record.filePath;
    };
    if (!file.isEmpty() && std::any_of(_pluginLoaders.cbegin(), _pluginLoaders.cend(), isSame)) {
        record.verdict = Verdict::LeftOut;
        record.reason = QStringLiteral("it is loaded already");
        return record;
    }
    if (file.isEmpty())
        return refuse(Verdict::NoPlugin, QStringLiteral("its path is empty"));
    if (isDiscard(record.filePath))
        return refuse(Verdict::LeftOut, QStringLiteral("a file with this name is never loaded"));
    const FileFilter filter = _fileFilter;
    QString reason = filter ? filter(record.filePath) : QString();
    if (!reason.isEmpty())
        return refuse(Verdict::LeftOut, reason);
    reason = System::libraryFileError(record.filePath);
    if (!reason.isEmpty())
        return refuse(Verdict::NoPlugin, reason);

    auto loader = std::make_unique<QPluginLoader>(record.filePath);
    const QVersionNumber version = versionOf(*loader);
    record.builtFor = version.toString();
    if (!version.isNull() && version.majorVersion() != OVAPP_VERSION_MAJOR)
        return refuse(Verdict::OtherVersion, versionText(record));

    // If the step ends the program or the handler throws, this is what is known.
    record.reason = QStringLiteral("it has not been loaded completely");
    addRecord(record);
    reportStep(record.filePath, Step::Load);
    record.reason.clear();
    auto unloading = qScopeGuard([&loader] { loader->unload(); });
    QElapsedTimer timer;
    timer.start();
    load(record, *loader);
    record.loadTime = milliseconds(timer);
    if (record.rootObject) {
        reportStep(record.filePath, Step::Query);
        timer.start();
        query(record);
        record.loadTime += milliseconds(timer);
    }
    if (record.verdict != Verdict::Accepted) {
        addRecord(record);
        if (loader->isLoaded())
            reportStep(record.filePath, Step::Unload);
        return record;
    }

    unloading.dismiss();
    listFile(record.filePath);
    _pluginInfos.append(record.info);
    loader->setObjectName(record.filePath);
    _pluginLoaders.append(loader.release());
    addRecord(record);
    if (startPlugin) {
        reportStep(record.filePath, Step::Start);
        timer.start();
        record.reason = start(*record.rootObject, record.filePath);
        record.startTime = milliseconds(timer);
        _records.last() = record;
    }
    return record;
}

bool PluginLoader::loadPlugin(QObject* object, bool startPlugins, const QString& filePath)
{
    if (!object)
        return false;
    PluginRecord record;
    record.filePath = filePath;
    record.rootObject = object;
    query(record);
    if (record.verdict != Verdict::Accepted)
        return false;
    _pluginInfos.append(record.info);
    if (startPlugins)
        start(*object, filePath);
    return true;
}

void PluginLoader::unloadPlugin(const QString& file)
{
    if (!QFileInfo::exists(file) || _pluginLoaders.isEmpty())
        return;
    QPluginLoader* loader = _pluginLoaders.last();
    if (QFileInfo(loader->fileName()) != QFileInfo(file))
        return;

    // The name is empty if the records have been cleared since.
    const QString name = loader->objectName();
    const QString filePath = name.isEmpty() ? file : name;
    reportStep(filePath, Step::Stop);
    QElapsedTimer timer;
    timer.start();
    const QString failure = stop(loader->instance(), filePath);
    const double stopTime = milliseconds(timer);
    if (!name.isEmpty()) {
        PluginRecord& record = *recordOf(name);
        record.stopTime = stopTime;
        if (!failure.isEmpty())
            record.reason += (record.reason.isEmpty() ? QString() : QStringLiteral("; ")) + failure;
    }
    reportStep(filePath, Step::Unload);
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

void PluginLoader::setStepHandler(StepHandler handler)
{
    _stepHandler = std::move(handler);
}

QList<PluginRecord> PluginLoader::records()
{
    return _records;
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
    return Core::Settings::instance().value(valueKey, defaultPluginValue()).toULongLong();
}

bool PluginLoader::writePluginIDValue(unsigned long long value)
{
    if (readPluginIDValue() == value)
        return false;
    Core::Settings::instance().setValue(valueKey, value);
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

void PluginLoader::reportStep(const QString& filePath, Step step)
{
    // The handler may replace itself.
    const StepHandler handler = _stepHandler;
    if (handler)
        handler(filePath, step);
}

QList<PluginRecord>::iterator PluginLoader::recordOf(const QString& filePath)
{
    return std::find_if(_records.begin(), _records.end(), [&filePath](const PluginRecord& each) {
        return each.filePath == filePath;
    });
}

void PluginLoader::addRecord(const PluginRecord& record)
{
    const auto older = recordOf(record.filePath);
    if (older != _records.end())
        _records.erase(older);
    _records.append(record);
}

void PluginLoader::listFile(const QString& filePath)
{
    const auto position = pluginFiles().indexOf(filePath);
    const QString last = _pluginLoaders.isEmpty() ? QString() : _pluginLoaders.last()->objectName();
    if (position >= 0 && _pluginFiles.indexOf(last) < position)
        return;
    _pluginFiles.removeOne(filePath);
    _pluginFiles.append(filePath);
}

} // namespace App
