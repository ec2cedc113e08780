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
#include <ovshape/FontDatabase.h>
#include <ovshape/FontPluginLoader.h>
#include <registries/CommInfoRegistry.h>
#include <registries/ExtendPluginRegistry.h>
#include <system/ExecutionState.h>

#include <QFile>

#include <cstdarg>

void RecordingLayer::record(const QString& call)
{
    if (instance().onCall)
        instance().onCall(call);
    instance().calls.append(call);
}

static QString text(const QVariant& value)
{
    return QLatin1String(value.typeName()) + u' ' + value.toString();
}

#define SINGLETON(type)                                                                            \
    type& type::instance()                                                                         \
    {                                                                                              \
        static type object;                                                                        \
        return object;                                                                             \
    }
SINGLETON(RecordingLayer)
SINGLETON(Core::ConsoleSingleton)
SINGLETON(Core::Settings)
SINGLETON(FontLibrary::FontDatabase)

#define RECORDED(call, parameters)                                                                 \
    void call parameters                                                                           \
    {                                                                                              \
        RecordingLayer::record(QStringLiteral(#call));                                             \
    }
#define RECORDED_SERVICE(name) RECORDED(name::init, ()) RECORDED(name::destruct, ())

RECORDED_SERVICE(App::CommInfoRegistry)
RECORDED_SERVICE(App::ExtendPluginRegistry)
RECORDED_SERVICE(Core::Settings)
RECORDED_SERVICE(Core::SystemBackupManager)
RECORDED_SERVICE(Core::SystemTimerManager)
RECORDED_SERVICE(Core::BoardEthDescHandler)
RECORDED_SERVICE(Database::DatabaseHandlerFactory)
RECORDED_SERVICE(Database::DatabaseManager)
RECORDED_SERVICE(Database::MemoryDatabaseManager)
RECORDED_SERVICE(Doc::EntityClipboard)
RECORDED_SERVICE(Doc::EntityInfoRegistry)
RECORDED_SERVICE(FontLibrary::FontPluginLoader)
RECORDED(Core::Object::initPropertyType, ())
RECORDED(Doc::DocObject::initPropertyType, ())
RECORDED(Doc::Entity::initPropertyType, ())
RECORDED(Doc::GroupEntity::initPropertyType, ())
RECORDED(Doc::Layer::initPropertyType, ())
RECORDED(Doc::ObjectGroupEntity::initPropertyType, ())
RECORDED(Core::ConsoleSingleton::attachObserver, (ConsoleObserver*))
RECORDED(Core::ConsoleSingleton::detachObserver, (ConsoleObserver*))

quint32 System::setThreadExecutionState(quint32 flags)
{
    RecordingLayer::record("System::setThreadExecutionState(%1)"_s.arg(flags, 0, 16));
    return 0;
}

Core::ConsoleObserver::~ConsoleObserver() = default;
Core::Object::~Object() = default;
Doc::DocObject::~DocObject() = default;

namespace Core {

struct Settings::Private
{
};

Settings::Settings() = default;
Settings::~Settings() = default;

QVariant Settings::value(const QString& key, const QVariant& defaultValue) const
{
    RecordingLayer::record("Core::Settings::value(%1, %2)"_s.arg(key, text(defaultValue)));
    return RecordingLayer::instance().settings.value(key, defaultValue);
}

void Settings::setValue(const QString& key, const QVariant& value)
{
    RecordingLayer::record("Core::Settings::setValue(%1, %2)"_s.arg(key, text(value)));
}

void Settings::setRunValue(const QString& key, const QVariant& value)
{
    RecordingLayer::record("Core::Settings::setRunValue(%1, %2)"_s.arg(key, text(value)));
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

void ConsoleSingleton::log(const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    RecordingLayer::record("Core::ConsoleSingleton::log("_s +
                           QString::vasprintf(format, arguments) + u')');
    va_end(arguments);
}

ConsoleObserverFile::ConsoleObserverFile(const QString& fileName)
{
    RecordingLayer::record("Core::ConsoleObserverFile(%1)"_s.arg(fileName));
}

ConsoleObserverFile::~ConsoleObserverFile()
{
    RecordingLayer::record("Core::~ConsoleObserverFile"_s);
}

void ConsoleObserverFile::write(Severity, const QByteArray&)
{
}

} // namespace Core

void FontLibrary::FontDatabase::addFontsFromDirectory(const QString& directory, bool flag)
{
    RecordingLayer::record("FontLibrary::FontDatabase::addFontsFromDirectory(%1, %2)"_s.arg(
        directory, flag ? "true"_s : "false"_s));
}

namespace Doc {

struct Document::Private
{
    std::unique_ptr<Storage> storage;
    QString filePath;
};

Document::Document(Storage* storage) : d(std::make_unique<Private>())
{
    RecordingLayer::record(storage ? "Doc::Document"_s : "Doc::Document without storage"_s);
    d->storage.reset(storage);
}

Document::~Document()
{
    RecordingLayer::record("Doc::~Document(%1)"_s.arg(d->filePath));
}

bool Document::open(const QString& path)
{
    RecordingLayer::record("Doc::Document::open(%1)"_s.arg(path));
    d->filePath = path;
    return RecordingLayer::instance().documentOpens;
}

QString Document::filePath() const
{
    return d->filePath;
}

void Document::setFilePath(const QString& path)
{
    RecordingLayer::record("Doc::Document::setFilePath(%1)"_s.arg(path));
    d->filePath = path;
}

Storage* Document::storage() const
{
    return d->storage.get();
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
    RecordingLayer::record(
        "Doc::DocObject::setPrintCountData(%1 of %2)"_s.arg(printCount.finishedCount())
            .arg(printCount.targetCount()));
}

} // namespace Doc
