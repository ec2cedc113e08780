#include "RecordingLayer.h"

#include <support/Listener.h>
#include <support/Literals.h>

#include <QtTest>

using App::Application;

namespace {

/// Records a notification, and the document that is active during it.
void recordNotification(const QString& notification)
{
    RecordingLayer::record(
        "%1 while %2"_s.arg(notification, nameOf(Application::instance().activateDocument())));
}

QStringList parts(QChar separator, const QString& text)
{
    QStringList result;
    for (const QString& part : text.split(separator, Qt::SkipEmptyParts))
        result.append(part.trimmed());
    return result;
}

/// The calls in each step of a document function; "%1" is the path.
const QMap<QString, QString> documentCalls{
    {"create"_s, "Doc::Document"_s},
    {"name"_s, "Doc::Document::setFilePath(%1)"_s},
    {"fail"_s, "Doc::Document::open(%1); Doc::~Document(%1)"_s},
    {"read"_s, "Doc::Document::open(%1); "
               "Core::Settings::value(Print/resetCountAfterOpened, bool false)"_s},
    {"reset"_s, "Doc::DocObject::setPrintCountData(0 of 9)"_s},
    {"delete"_s, "Doc::~Document(%1)"_s},
    {"remember"_s, "Core::Settings::setRunValue(File/Document, QString %1); "
                   "Core::Settings::setValue(File/Document, QString %1)"_s},
    {"close"_s, "close %1 while %1"_s},
    {"new"_s, "new %1 while %1"_s},
    {"active"_s, "active %1 while %1"_s},
};

QStringList callsOf(const QString& steps)
{
    QStringList calls;
    for (const QString& step : parts(u',', steps))
        calls += parts(u';', documentCalls.value(step.section(u' ', 0, 0)))
                     .replaceInStrings("%1"_s, step.section(u' ', 1));
    return calls;
}

QStringList without(QStringList calls, const QStringList& others)
{
    for (const QString& other : others)
        calls.removeAll(other);
    return calls;
}

} // namespace

/// The exact order in which the library calls the layer below.
class tst_order : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(QDir::setCurrent(_directory.path()) && QDir().mkdir("more"_s));
        for (const QString& name : {"a"_s, "A"_s, "b"_s, "damaged"_s, "more/a"_s})
            QVERIFY(QFile(name).open(QIODevice::WriteOnly));
        QFile::link("a"_s, "link.lnk"_s);
    }

    void cleanupTestCase() { QDir::setCurrent(QDir::tempPath()); }

    void cleanup()
    {
        layer = RecordingLayer();
        Application::destruct();
        layer.calls.clear();
    }

    void startUpAndShutdown()
    {
        const QStringList startUp = parts(u'\n', R"(
        System::setThreadExecutionState(80000041)
        Core::Settings::init
        Core::Settings::value(Debug/file, bool false)
        Core::ConsoleObserverFile(log.txt)
        Core::ConsoleSingleton::attachObserver
        Core::ConsoleSingleton::log(Application::attachObservers.)
        Core::BoardEthDescHandler::init
        Doc::EntityInfoRegistry::init
        Core::SystemTimerManager::init
        Database::DatabaseManager::init
        Database::DatabaseHandlerFactory::init
        Database::MemoryDatabaseManager::init
        FontLibrary::FontPluginLoader::init
        FontLibrary::FontDatabase::addFontsFromDirectory(system fonts, true)
        FontLibrary::FontDatabase::addFontsFromDirectory(user fonts, true)
        Core::Object::initPropertyType
        Doc::DocObject::initPropertyType
        Doc::Layer::initPropertyType
        Doc::Entity::initPropertyType
        Doc::GroupEntity::initPropertyType
        Doc::ObjectGroupEntity::initPropertyType
        App::CommInfoRegistry::init
        App::ExtendPluginRegistry::init
        Core::SystemBackupManager::init
        Doc::EntityClipboard::init)"_s);
        const QStringList shutdown = parts(u'\n', R"(
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
        Core::ConsoleSingleton::log(destruct application.))"_s);
        const QStringList logFile{
            "Core::ConsoleObserverFile(log.txt)"_s, "Core::ConsoleSingleton::attachObserver"_s,
            "Core::ConsoleSingleton::detachObserver"_s, "Core::~ConsoleObserverFile"_s};
        layer.onCall = [](const QString& call) {
            if (call == "Core::BoardEthDescHandler::init"_s)
                QVERIFY(!Application::instance().activateDocument());
        };
        for (const bool toFile : {false, true}) {
            layer.settings.insert("Debug/file"_s, toFile);
            Application::init();
            QCOMPARE(layer.calls, toFile ? startUp : without(startUp, logFile));
            layer.calls.clear();
            Application::destruct();
            QCOMPARE(layer.calls, toFile ? shutdown : without(shutdown, logFile));

            // A shutdown without a start-up is allowed.
            layer.calls.clear();
            Application::destruct();
            QCOMPARE(layer.calls, without(shutdown, logFile + QStringList{shutdown.last()}));
            layer.calls.clear();
        }
    }

    void startFinished()
    {
        Application::init();
        Listener listener(recordNotification);
        add(Application::instance(), &listener);
        for (const char* version : {"4.5.6", static_cast<const char*>(nullptr)}) {
            layer.version = version;
            layer.calls.clear();
            Application::instance().doAppStartFinished();
            QCOMPARE(layer.calls,
                     QStringList({"Core::Settings::setValue(About/version, QString %1)"_s.arg(
                                      QLatin1String(version)),
                                  "started while none"_s,
                                  "Core::ConsoleSingleton::log(Application::"
                                  "doAppStartFinished:: application started.)"_s}));
        }
    }

    void documents_data()
    {
        for (const char* column : {"active", "action", "result", "activeAfter", "steps"})
            QTest::addColumn<QString>(column);
        const char* const rows[][5] = {
            {"none", "new n", "n", "n", "create, name n, remember n, new n"},
            {"a", "new n", "n", "n", "create, name n, close a, remember n, new n"},
            {"a", "new b", "b", "b", "create, read b, reset, close a, remember b, new b"},
            {"a", "new damaged", "none", "a", "create, fail damaged"},
            {"a", "new .", "none", "a", "create, fail ."},
            {"a", "new", "none", "a", ""},
            {"a", "new missing/n", "none", "a", ""},
            {"none", "open b", "b", "b", "create, read b, remember b, new b"},
            {"a", "open b", "b", "b", "create, read b, reset, close a, remember b, new b"},
            {"a", "open damaged", "none", "a", "create, fail damaged"},
            {"a", "open .", "none", "a", ""},
            {"a", "open n", "none", "a", ""},
            {"a", "open ./a", "a", "a", ""},
            {"a", "open A", "A", "A", "create, read A, close a, remember A, new A"},
            {"a", "open link.lnk", "link.lnk", "link.lnk",
             "create, read link.lnk, close a, remember link.lnk, new link.lnk"},
            {"a", "open more/a", "more/a", "more/a",
             "create, read more/a, close a, remember more/a, new more/a"},
            {"none", "activate b", "b", "b", "remember b, active b"},
            {"a", "activate b", "b", "b", "delete a, remember b, active b"},
            {"a", "activate none", "none", "none", "delete a, active none"},
            {"a", "activate a", "a", "a", ""},
            {"none", "activate none", "none", "none", ""},
            {"a", "close", "true", "none", "close a"},
            {"none", "close", "false", "none", ""},
        };
        for (const auto& row : rows) {
            QTestData& data = QTest::addRow("active: %s; %s", row[0], row[1]);
            for (const char* text : row)
                data << QString::fromLatin1(text);
        }
    }

    void documents()
    {
        QFETCH(QString, active);
        QFETCH(QString, action);
        QFETCH(QString, steps);
#ifndef Q_OS_UNIX
        if (action.endsWith("link.lnk"_s))
            QSKIP("Qt creates shortcuts instead of links on this system");
#endif
        layer.documentOpens = !steps.contains("fail"_s);
        layer.settings.insert("Print/resetCountAfterOpened"_s, steps.contains("reset"_s));
        Application::init();
        Application& application = Application::instance();
        Listener listener(recordNotification);
        add(application, &listener);
        const auto documentAt = [this](const QString& path) -> Doc::Document* {
            if (path == "none"_s)
                return nullptr;
            const auto document = new Doc::Document(nullptr);
            document->setFilePath(path);
            layer.calls.clear();
            return document;
        };
        Doc::Document* const previous = documentAt(active);
        application.setActivateDocument(previous);
        layer.calls.clear();

        const QString path = action.section(u' ', 1);
        QString result;
        if (action.startsWith("new"_s)) {
            result = nameOf(application.newDocument(path));
        } else if (action.startsWith("open"_s)) {
            result = nameOf(application.openDocument(path));
        } else if (action == "close"_s) {
            result = application.closeDocument() ? "true"_s : "false"_s;
        } else {
            application.setActivateDocument(path == active ? previous : documentAt(path));
            result = nameOf(application.activateDocument());
        }
        QTEST(result, "result");
        QCOMPARE(layer.calls, callsOf(steps));
        QTEST(nameOf(application.activateDocument()), "activeAfter");
        QVERIFY(!QFile::exists("n"_s));

        if (!steps.startsWith("delete"_s) && previous != application.activateDocument())
            delete previous;
        delete application.activateDocument();
    }

private:
    QTemporaryDir _directory;
    RecordingLayer& layer = RecordingLayer::instance();
};

QTEST_APPLESS_MAIN(tst_order)
#include "tst_order.moc"
