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

void record(const char* call, const QVariantList& arguments)
{
    QStringList texts;
    for (const QVariant& argument : arguments)
        texts.append(argument.toString());
    calls.append(QLatin1String(call));
    if (!texts.isEmpty())
        calls.last() += u'(' + texts.join(", "_s) + u')';
}

} // namespace

#define SINGLETON(type)                                                                            \
    type& type::instance()                                                                         \
    {                                                                                              \
        static type object;                                                                        \
        return object;                                                                             \
    }
#define RETURNING(type, call, value)                                                               \
    type call                                                                                      \
    {                                                                                              \
        return value;                                                                              \
    }
#define RECORDED(type, call, parameters, ...)                                                      \
    type call parameters                                                                           \
    {                                                                                              \
        record(#call, {__VA_ARGS__});                                                              \
        return type();                                                                             \
    }
#define RECORDED_SERVICE(name) RECORDED(void, name::init, (), ) RECORDED(void, name::destruct, (), )

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
RECORDED(void, Core::BoardEthDescHandler::destruct, (), )
RECORDED(void, Core::Object::initPropertyType, (), )
RECORDED(void, Doc::DocObject::initPropertyType, (), )
RECORDED(void, Doc::Entity::initPropertyType, (), )
RECORDED(void, Doc::GroupEntity::initPropertyType, (), )
RECORDED(void, Doc::Layer::initPropertyType, (), )
RECORDED(void, Doc::ObjectGroupEntity::initPropertyType, (), )
RECORDED(void, Core::ConsoleSingleton::attachObserver, (ConsoleObserver*), )
RECORDED(void, Core::ConsoleSingleton::detachObserver, (ConsoleObserver*), )
RECORDED(void, Core::ConsoleSingleton::log, (const char* format, ...), QLatin1String(format))
RECORDED(void, Core::ConsoleObserverFile::write, (Severity, const QByteArray&), )
RECORDED(void, Core::Settings::setValue, (const QString& key, const QVariant& value), key,
         QLatin1String(value.typeName()), value)
RECORDED(quint32, System::setThreadExecutionState, (quint32 flags), QString::number(flags, 16))
RECORDED(void, FontLibrary::FontDatabase::addFontsFromDirectory,
         (const QString& directory, bool flag), directory, flag)
RECORDED(void, App::Application::notifyStartFinishListener, (), _p_activeDocument != nullptr)
RETURNING(QString, Core::Settings::sysFontDirPath() const, "system fonts"_s)
RETURNING(QString, Core::Settings::usrFontDirPath() const, "user fonts"_s)
RETURNING(const char*, Core::Version::versionString(), version)
SINGLETON(Core::ConsoleSingleton)
SINGLETON(Core::Settings)
SINGLETON(FontLibrary::FontDatabase)

namespace Core {

struct Settings::Private
{
};
Settings::Settings() = default;
Settings::~Settings() = default;

QVariant Settings::value(const QString& key, const QVariant& defaultValue) const
{
    record("Core::Settings::value", {key, QLatin1String(defaultValue.typeName()), defaultValue});
    return logsToFile ? QVariant(true) : defaultValue;
}

ConsoleObserver::~ConsoleObserver() = default;

ConsoleObserverFile::ConsoleObserverFile(const QString& fileName)
{
    record("Core::ConsoleObserverFile", {fileName});
}

ConsoleObserverFile::~ConsoleObserverFile()
{
    record("Core::~ConsoleObserverFile", {});
}

void BoardEthDescHandler::init()
{
    // The application object exists from here on.
    Application::instance().notifyStartFinishListener();
    record("Core::BoardEthDescHandler::init", {});
}

} // namespace Core

namespace {

const char startUp[] = R"(
    System::setThreadExecutionState(80000041); Core::Settings::init
    Core::Settings::value(Debug/file, bool, false)
    Core::ConsoleObserverFile(log.txt); Core::ConsoleSingleton::attachObserver
    Core::ConsoleSingleton::log(Application::attachObservers.)
    App::Application::notifyStartFinishListener(false); Core::BoardEthDescHandler::init
    Doc::EntityInfoRegistry::init; Core::SystemTimerManager::init
    Database::DatabaseManager::init; Database::DatabaseHandlerFactory::init
    Database::MemoryDatabaseManager::init; FontLibrary::FontPluginLoader::init
    FontLibrary::FontDatabase::addFontsFromDirectory(system fonts, true)
    FontLibrary::FontDatabase::addFontsFromDirectory(user fonts, true)
    Core::Object::initPropertyType; Doc::DocObject::initPropertyType
    Doc::Layer::initPropertyType; Doc::Entity::initPropertyType
    Doc::GroupEntity::initPropertyType; Doc::ObjectGroupEntity::initPropertyType
    App::CommInfoRegistry::init; App::ExtendPluginRegistry::init
    Core::SystemBackupManager::init; Doc::EntityClipboard::init)";

const char startFinished[] = R"(
    Core::Settings::setValue(About/version, QString, %1)
    App::Application::notifyStartFinishListener(false)
    Core::ConsoleSingleton::log(Application::doAppStartFinished:: application started.))";

const char shutdown[] = R"(
    Doc::EntityClipboard::destruct; Core::SystemBackupManager::destruct
    App::ExtendPluginRegistry::destruct; App::CommInfoRegistry::destruct
    FontLibrary::FontPluginLoader::destruct; Database::MemoryDatabaseManager::destruct
    Database::DatabaseHandlerFactory::destruct; Database::DatabaseManager::destruct
    Core::SystemTimerManager::destruct; Doc::EntityInfoRegistry::destruct
    Core::BoardEthDescHandler::destruct
    Core::ConsoleSingleton::detachObserver; Core::~ConsoleObserverFile
    Core::Settings::destruct; System::setThreadExecutionState(80000000)
    Core::ConsoleSingleton::log(destruct application.))";

/// Returns the calls in a text except those that match `without`.
QStringList lines(const char* text, const QString& without = "^$"_s)
{
    QStringList result =
        QString::fromUtf8(text).split(QRegularExpression("\\n    |; "_s), Qt::SkipEmptyParts);
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
