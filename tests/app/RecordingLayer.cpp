#include "RecordingLayer.h"

#include <support/Literals.h>

#include <ovcore/BoardEthDescHandler.h>
#include <ovcore/ConsoleObserverFile.h>
#include <ovcore/ConsoleSingleton.h>
#include <ovcore/Object.h>
#include <ovcore/Settings.h>
#include <ovcore/SystemBackupManager.h>
#include <ovcore/SystemTimerManager.h>
#include <ovcore/Version.h>
#include <ovdatabase/DatabaseHandlerFactory.h>
#include <ovdatabase/DatabaseManager.h>
#include <ovdatabase/MemoryDatabaseManager.h>
#include <ovdoc/DocObject.h>
#include <ovdoc/Document.h>
#include <ovdoc/Entity.h>
#include <ovdoc/EntityClipboard.h>
#include <ovdoc/EntityInfoRegistry.h>
#include <ovdoc/GroupEntity.h>
#include <ovdoc/Layer.h>
#include <ovdoc/ObjectGroupEntity.h>
#include <ovdoc/Storage.h>
#include <ovdoc/Transaction.h>
#include <ovshape/FontDatabase.h>
#include <ovshape/FontPluginLoader.h>
#include <system/ExecutionState.h>

#include <QFile>

RecordingLayer& RecordingLayer::instance()
{
    static RecordingLayer layer;
    return layer;
}

void RecordingLayer::note(const QString& call)
{
    instance().calls.append(call);
    if (instance().onCall)
        instance().onCall(call);
}

namespace {

void note(const char* call, const QString& arguments)
{
    RecordingLayer::note(QLatin1String(call) + u'(' + arguments + u')');
}

QString text(const QVariant& value)
{
    return QLatin1String(value.typeName()) + u' ' + value.toString();
}

} // namespace

#define RECORDED(call)                                                                             \
    void call()                                                                                    \
    {                                                                                              \
        RecordingLayer::note(QStringLiteral(#call));                                               \
    }

RECORDED(Core::Object::initPropertyType)
RECORDED(Core::Settings::init)
RECORDED(Core::Settings::destruct)
RECORDED(Core::SystemBackupManager::init)
RECORDED(Core::SystemBackupManager::destruct)
RECORDED(Core::SystemTimerManager::init)
RECORDED(Core::SystemTimerManager::destruct)
RECORDED(Core::BoardEthDescHandler::init)
RECORDED(Core::BoardEthDescHandler::destruct)
RECORDED(Database::DatabaseHandlerFactory::init)
RECORDED(Database::DatabaseHandlerFactory::destruct)
RECORDED(Database::DatabaseManager::init)
RECORDED(Database::DatabaseManager::destruct)
RECORDED(Database::MemoryDatabaseManager::init)
RECORDED(Database::MemoryDatabaseManager::destruct)
RECORDED(Doc::DocObject::initPropertyType)
RECORDED(Doc::Entity::initPropertyType)
RECORDED(Doc::EntityClipboard::init)
RECORDED(Doc::EntityClipboard::destruct)
RECORDED(Doc::EntityInfoRegistry::init)
RECORDED(Doc::EntityInfoRegistry::destruct)
RECORDED(Doc::GroupEntity::initPropertyType)
RECORDED(Doc::Layer::initPropertyType)
RECORDED(Doc::ObjectGroupEntity::initPropertyType)
RECORDED(FontLibrary::FontPluginLoader::init)
RECORDED(FontLibrary::FontPluginLoader::destruct)

quint32 System::setThreadExecutionState(quint32 flags)
{
    note("System::setThreadExecutionState", QString::number(flags, 16));
    return 0;
}

namespace Core {

struct Settings::Private
{
};

Settings::Settings() = default;
Settings::~Settings() = default;

Settings& Settings::instance()
{
    static Settings settings;
    return settings;
}

QVariant Settings::value(const QString& key, const QVariant& defaultValue) const
{
    note("Core::Settings::value", key + ", "_s + text(defaultValue));
    return RecordingLayer::instance().settings.value(key, defaultValue);
}

void Settings::setValue(const QString& key, const QVariant& value)
{
    note("Core::Settings::setValue", key + ", "_s + text(value));
}

void Settings::setRunValue(const QString& key, const QVariant& value)
{
    note("Core::Settings::setRunValue", key + ", "_s + text(value));
}

QString Settings::sysFontDirPath() const
{
    return "system fonts"_s;
}

QString Settings::usrFontDirPath() const
{
    return "user fonts"_s;
}

const char* Version::versionString()
{
    return RecordingLayer::instance().version;
}

ConsoleSingleton& ConsoleSingleton::instance()
{
    static ConsoleSingleton console;
    return console;
}

void ConsoleSingleton::attachObserver(ConsoleObserver*)
{
    RecordingLayer::note("Core::ConsoleSingleton::attachObserver"_s);
}

void ConsoleSingleton::detachObserver(ConsoleObserver*)
{
    RecordingLayer::note("Core::ConsoleSingleton::detachObserver"_s);
}

void ConsoleSingleton::log(const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    note("Core::ConsoleSingleton::log", QString::vasprintf(format, arguments));
    va_end(arguments);
}

ConsoleObserverFile::ConsoleObserverFile(const QString& fileName)
{
    note("Core::ConsoleObserverFile", fileName);
}

ConsoleObserverFile::~ConsoleObserverFile()
{
    RecordingLayer::note("Core::~ConsoleObserverFile"_s);
}

void ConsoleObserverFile::write(Severity, const QByteArray&)
{
}

} // namespace Core

FontLibrary::FontDatabase& FontLibrary::FontDatabase::instance()
{
    static FontDatabase database;
    return database;
}

void FontLibrary::FontDatabase::addFontsFromDirectory(const QString& directory, bool flag)
{
    note("FontLibrary::FontDatabase::addFontsFromDirectory",
         directory + (flag ? ", true"_s : ", false"_s));
}

namespace Doc {

Transaction::Transaction(const Transaction&) = default;
Transaction& Transaction::operator=(const Transaction&) = default;
Transaction::~Transaction() = default;

struct Document::Private
{
    std::unique_ptr<Storage> storage;
    QString filePath;
};

Document::Document(Storage* storage) : d(std::make_unique<Private>())
{
    RecordingLayer::note("Doc::Document"_s);
    d->storage.reset(storage);
}

Document::~Document()
{
    note("Doc::~Document", d->filePath);
}

bool Document::open(const QString& path)
{
    note("Doc::Document::open", path);
    d->filePath = path;
    return RecordingLayer::instance().documentOpens;
}

QString Document::filePath() const
{
    return d->filePath;
}

void Document::setFilePath(const QString& path)
{
    note("Doc::Document::setFilePath", path);
    d->filePath = path;
}

Storage* Document::storage() const
{
    return d->storage.get();
}

Storage::Storage() : _p_docObject(QSharedPointer<DocObject>::create())
{
    RecordingLayer::note("Doc::Storage"_s);
}

Storage::~Storage() = default;

QSharedPointer<DocObject> Storage::queryDocObjectDirect() const
{
    return _p_docObject;
}

Laser::PrintCountParams DocObject::printCountData() const
{
    Laser::PrintCountParams printCount;
    printCount.setFinishedCount(5);
    printCount.setTargetCount(9);
    return printCount;
}

void DocObject::setPrintCountData(const Laser::PrintCountParams& printCount)
{
    note("Doc::DocObject::setPrintCountData",
         "%1 of %2"_s.arg(printCount.finishedCount()).arg(printCount.targetCount()));
}

} // namespace Doc
