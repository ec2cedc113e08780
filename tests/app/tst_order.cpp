#include <support/Literals.h>

// The tested file, with the headers of everything that it calls.
#include <app/Application.cpp>

#include <QtTest>

using App::Application;

// An implementation of everything that Application.cpp calls, which records each call with its
// relevant arguments.

namespace {

QStringList calls;
bool logsToFile = false;
const char* version = nullptr;

QString text(const QVariant& value)
{
    return QLatin1String(value.typeName()) + u' ' + value.toString();
}

} // namespace

#define SINGLETON(type)                                                                            \
    type& type::instance()                                                                         \
    {                                                                                              \
        static type object;                                                                        \
        return object;                                                                             \
    }
#define RECORDED(call, parameters)                                                                 \
    void call parameters                                                                           \
    {                                                                                              \
        calls.append(QStringLiteral(#call));                                                       \
    }
#define RECORDED_SERVICE(name) RECORDED(name::init, ()) RECORDED(name::destruct, ())

RECORDED_SERVICE(App::CommInfoRegistry)
RECORDED_SERVICE(App::ExtendPluginRegistry)
RECORDED_SERVICE(Core::Settings)
RECORDED_SERVICE(Core::SystemBackupManager)
RECORDED_SERVICE(Core::SystemTimerManager)
RECORDED_SERVICE(Database::DatabaseHandlerFactory)
RECORDED_SERVICE(Database::DatabaseManager)
RECORDED_SERVICE(Database::MemoryDatabaseManager)
RECORDED_SERVICE(Doc::EntityClipboard)
RECORDED_SERVICE(Doc::EntityInfoRegistry)
RECORDED_SERVICE(FontLibrary::FontPluginLoader)
RECORDED(Core::BoardEthDescHandler::destruct, ())
RECORDED(Core::Object::initPropertyType, ())
RECORDED(Doc::DocObject::initPropertyType, ())
RECORDED(Doc::Entity::initPropertyType, ())
RECORDED(Doc::GroupEntity::initPropertyType, ())
RECORDED(Doc::Layer::initPropertyType, ())
RECORDED(Doc::ObjectGroupEntity::initPropertyType, ())
RECORDED(Core::ConsoleSingleton::attachObserver, (ConsoleObserver*))
RECORDED(Core::ConsoleSingleton::detachObserver, (ConsoleObserver*))
RECORDED(Core::ConsoleObserverFile::write, (Severity, const QByteArray&))
SINGLETON(Core::ConsoleSingleton)
SINGLETON(Core::Settings)
SINGLETON(FontLibrary::FontDatabase)

quint32 System::setThreadExecutionState(quint32 flags)
{
    calls.append("System::setThreadExecutionState(%1)"_s.arg(flags, 0, 16));
    return 0;
}

namespace Core {

struct Settings::Private
{
};
Settings::Settings() = default;
Settings::~Settings() = default;

QVariant Settings::value(const QString& key, const QVariant& defaultValue) const
{
    calls.append("Core::Settings::value(%1, %2)"_s.arg(key, text(defaultValue)));
    return logsToFile ? QVariant(true) : defaultValue;
}

void Settings::setValue(const QString& key, const QVariant& value)
{
    calls.append("Core::Settings::setValue(%1, %2)"_s.arg(key, text(value)));
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
    return version;
}

void ConsoleSingleton::log(const char* format, ...)
{
    calls.append("Core::ConsoleSingleton::log("_s + QString::fromUtf8(format) + u')');
}

ConsoleObserver::~ConsoleObserver() = default;

ConsoleObserverFile::ConsoleObserverFile(const QString& fileName)
{
    calls.append("Core::ConsoleObserverFile(%1)"_s.arg(fileName));
}

ConsoleObserverFile::~ConsoleObserverFile()
{
    calls.append("Core::~ConsoleObserverFile"_s);
}

void BoardEthDescHandler::init()
{
    // The application object exists from here on.
    Application::instance().notifyStartFinishListener();
    calls.append("Core::BoardEthDescHandler::init"_s);
}

} // namespace Core

void Application::notifyStartFinishListener()
{
    calls.append("App::Application::notifyStartFinishListener, active document: %1"_s.arg(
        _p_activeDocument ? "any"_s : "none"_s));
}

void FontLibrary::FontDatabase::addFontsFromDirectory(const QString& directory, bool flag)
{
    calls.append(
        "FontLibrary::FontDatabase::addFontsFromDirectory(%1, %2)"_s.arg(directory).arg(flag));
}

namespace {

const char startUp[] = R"(
    System::setThreadExecutionState(80000041)
    Core::Settings::init
    Core::Settings::value(Debug/file, bool false)
    Core::ConsoleObserverFile(log.txt)
    Core::ConsoleSingleton::attachObserver
    Core::ConsoleSingleton::log(Application::attachObservers.)
    App::Application::notifyStartFinishListener, active document: none
    Core::BoardEthDescHandler::init
    Doc::EntityInfoRegistry::init
    Core::SystemTimerManager::init
    Database::DatabaseManager::init
    Database::DatabaseHandlerFactory::init
    Database::MemoryDatabaseManager::init
    FontLibrary::FontPluginLoader::init
    FontLibrary::FontDatabase::addFontsFromDirectory(system fonts, 1)
    FontLibrary::FontDatabase::addFontsFromDirectory(user fonts, 1)
    Core::Object::initPropertyType
    Doc::DocObject::initPropertyType
    Doc::Layer::initPropertyType
    Doc::Entity::initPropertyType
    Doc::GroupEntity::initPropertyType
    Doc::ObjectGroupEntity::initPropertyType
    App::CommInfoRegistry::init
    App::ExtendPluginRegistry::init
    Core::SystemBackupManager::init
    Doc::EntityClipboard::init)";

const char startFinished[] = R"(
    Core::Settings::setValue(About/version, QString %1)
    App::Application::notifyStartFinishListener, active document: none
    Core::ConsoleSingleton::log(Application::doAppStartFinished:: application started.))";

const char shutdown[] = R"(
    Doc::EntityClipboard::destruct
    Core::SystemBackupManager::destruct
    App::ExtendPluginRegistry::destruct
    App::CommInfoRegistry::destruct
    FontLibrary::FontPluginLoader::destruct
    Database::MemoryDatabaseManager::destruct
    Database::DatabaseHandlerFactory::destruct
    Database::DatabaseManager::destruct
    Core::SystemTimerManager::destruct
    Doc::EntityInfoRegistry::destruct
    Core::BoardEthDescHandler::destruct
    Core::ConsoleSingleton::detachObserver
    Core::~ConsoleObserverFile
    Core::Settings::destruct
    System::setThreadExecutionState(80000000)
    Core::ConsoleSingleton::log(destruct application.))";

/// Returns the calls in a text except those that match `without`.
QStringList lines(const char* text, const QString& without = "^$"_s)
{
    QStringList result = QString::fromUtf8(text).split("\n    "_s, Qt::SkipEmptyParts);
    for (const QString& line : result.filter(QRegularExpression(without)))
        result.removeOne(line);
    return result;
}

} // namespace

/// The exact order in which start-up and shutdown call the layer below and the registries.
class tst_order : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void order()
    {
        for (const bool toFile : {false, true}) {
            logsToFile = toFile;
            const QString without = toFile ? "^$"_s : "ConsoleObserverFile|(at|de)tachObserver$"_s;
            calls.clear();
            Application::init();
            QCOMPARE(calls, lines(startUp, without));
            for (const char* text : {"4.5.6", static_cast<const char*>(nullptr)}) {
                version = text;
                calls.clear();
                Application::instance().doAppStartFinished();
                QCOMPARE(calls.join(u'\n'),
                         lines(startFinished).join(u'\n').arg(QLatin1String(text)));
            }
            calls.clear();
            Application::destruct();
            QCOMPARE(calls, lines(shutdown, without));

            // A shutdown without a start-up is allowed.
            calls.clear();
            Application::destruct();
            QCOMPARE(calls, lines(shutdown, "Observer|log"_s));
        }
    }
};

QTEST_APPLESS_MAIN(tst_order)
#include "tst_order.moc"
