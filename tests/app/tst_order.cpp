#include "RecordingLayer.h"

#include <support/Literals.h>

#include <app/ActiveDocumentListener.h>
#include <app/Application.h>
#include <app/AppStartFinishListener.h>
#include <app/CloseDocumentListener.h>
#include <app/NewDocumentListener.h>
#include <ovdoc/Document.h>
#include <registries/CommInfoRegistry.h>
#include <registries/ExtendPluginRegistry.h>

#include <QtTest>

#include <memory>

using App::Application;

namespace {

struct NotingListener : App::AppStartFinishListener,
                        App::NewDocumentListener,
                        App::CloseDocumentListener,
                        App::ActiveDocumentListener
{
    void updateAppStartFinishListener() override { RecordingLayer::note("told"_s); }
    void updateNewDocumentListener(Doc::Document* document) override { note("new", document); }
    void updateCloseDocumentListener(Doc::Document* document) override { note("close", document); }
    void updateActiveDocumentListener(Doc::Document* document) override
    {
        note("active", document);
    }
    static void note(const char* kind, const Doc::Document* document)
    {
        const auto nameOf = [](const Doc::Document* named) {
            return named ? named->filePath() : "none"_s;
        };
        RecordingLayer::note(
            "%1 %2 while %3"_s.arg(QLatin1String(kind), nameOf(document),
                                   nameOf(Application::instance().activateDocument())));
    }
};

QStringList lines(const char* text)
{
    QStringList result;
    for (const QString& line : QString::fromUtf8(text).split(u'\n'))
        if (!line.trimmed().isEmpty())
            result.append(line.trimmed());
    return result;
}

} // namespace

/// The exact order in which the library calls the layer below.
class tst_order : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { layer = RecordingLayer(); }

    void startUp_data()
    {
        QTest::addColumn<bool>("toFile");
        QTest::newRow("no log file") << false;
        QTest::newRow("log file") << true;
    }

    void startUp()
    {
        QFETCH(bool, toFile);
        QStringList expected = lines(R"(
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
        Core::SystemBackupManager::init
        Doc::EntityClipboard::init)");
        if (toFile)
            layer.settings.insert("Debug/file"_s, true);
        else
            expected.erase(expected.begin() + 3, expected.begin() + 5);

        int checks = 0;
        layer.onCall = [&checks](const QString& call) {
            if (call == "Core::BoardEthDescHandler::init"_s) {
                QVERIFY(!Application::instance().activateDocument());
                ++checks;
            } else if (call == "Doc::ObjectGroupEntity::initPropertyType"_s) {
                QVERIFY(!App::CommInfoRegistry::instance());
                ++checks;
            } else if (call == "Core::SystemBackupManager::init"_s) {
                QVERIFY(App::CommInfoRegistry::instance());
                QCOMPARE(App::ExtendPluginRegistry::instance().count(), 0);
                ++checks;
            }
        };
        Application::init();
        QCOMPARE(layer.calls, expected);
        QCOMPARE(checks, 3);
        Application::destruct();
    }

    void startFinished_data()
    {
        QTest::addColumn<QByteArray>("version");
        QTest::addColumn<QString>("stored");
        QTest::newRow("a version") << QByteArray("4.5.6") << "QString 4.5.6";
        QTest::newRow("none") << QByteArray() << "QString ";
    }

    void startFinished()
    {
        QFETCH(QByteArray, version);
        QFETCH(QString, stored);
        layer.version = version.isNull() ? nullptr : version.constData();
        Application::init();
        NotingListener listener;
        Application::instance().addStartFinishListener(&listener);

        layer.calls.clear();
        Application::instance().doAppStartFinished();
        QCOMPARE(layer.calls,
                 QStringList({"Core::Settings::setValue(About/version, %1)"_s.arg(stored), "told"_s,
                              "Core::ConsoleSingleton::log(Application::"
                              "doAppStartFinished:: application started.)"_s}));
        Application::destruct();
    }

    void shutdown_data()
    {
        QTest::addColumn<bool>("started");
        QTest::addColumn<bool>("toFile");
        QTest::newRow("after start-up") << true << false;
        QTest::newRow("with a log file") << true << true;
        QTest::newRow("without start-up") << false << false;
    }

    void shutdown()
    {
        QFETCH(bool, started);
        QFETCH(bool, toFile);
        QStringList expected = lines(R"(
        Doc::EntityClipboard::destruct
        Core::SystemBackupManager::destruct
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
        Core::ConsoleSingleton::log(destruct application.))");
        if (!toFile)
            expected.erase(expected.begin() + 9, expected.begin() + 11);
        if (!started)
            expected.removeLast();

        layer.settings.insert("Debug/file"_s, toFile);
        if (started)
            Application::init();
        layer.calls.clear();
        layer.onCall = [started](const QString& call) {
            if (call == "Core::SystemBackupManager::destruct"_s)
                QCOMPARE(App::CommInfoRegistry::instance() != nullptr, started);
            else if (call == "FontLibrary::FontPluginLoader::destruct"_s)
                QVERIFY(!App::CommInfoRegistry::instance());
        };
        Application::destruct();
        QCOMPARE(layer.calls, expected);

        layer.calls.clear();
        layer.onCall = nullptr;
        Application::destruct();
        QVERIFY(layer.calls.filter("Console"_s).isEmpty());
    }

    void documents_data()
    {
        QTest::addColumn<QString>("operation");
        QTest::addColumn<bool>("opens");
        QTest::addColumn<bool>("resets");
        QTest::addColumn<QString>("expected");
        const QString created = R"(
        Doc::Storage
        Doc::Document
        )"_s;
        const QString read = created + R"(Doc::Document::open(FILE)
        Core::Settings::value(Print/resetCountAfterOpened, bool false)
        )"_s;
        const QString activated = R"(close old while old
        Core::Settings::setRunValue(File/Document, QString FILE)
        Core::Settings::setValue(File/Document, QString FILE)
        new FILE while FILE)"_s;
        QTest::newRow("new") << "new FILE" << true << true
                             << created + "Doc::Document::setFilePath(FILE)\n"_s + activated;
        QTest::newRow("opened, count reset")
            << "open FILE" << true << true
            << read + "Doc::DocObject::setPrintCountData(0 of 9)\n"_s + activated;
        QTest::newRow("opened, count kept") << "open FILE" << true << false << read + activated;
        QTest::newRow("does not open")
            << "open FILE" << false << true << created + R"(Doc::Document::open(FILE)
        Doc::~Document(FILE))"_s;
        QTest::newRow("directory") << "open DIRECTORY" << true << true << "";
        QTest::newRow("activated") << "activate b" << true << true << R"(Doc::~Document(old)
        Core::Settings::setRunValue(File/Document, QString b)
        Core::Settings::setValue(File/Document, QString b)
        active b while b)";
        QTest::newRow("none activated") << "activate" << true << true << R"(Doc::~Document(old)
        active none while none)";
        QTest::newRow("closed") << "close" << true << true << "close old while old";
    }

    void documents()
    {
        QFETCH(QString, operation);
        QFETCH(bool, resets);
        QFETCH(QString, expected);
        QTemporaryDir directory;
        const QString file = directory.filePath("piece.ovdoc"_s);
        for (QString* text : {&operation, &expected}) {
            text->replace("FILE"_s, file);
            text->replace("DIRECTORY"_s, directory.path());
        }
        const QString verb = operation.section(u' ', 0, 0);
        const QString path = operation.section(u' ', 1);
        if (verb == "open"_s)
            QVERIFY(QFile(file).open(QIODevice::WriteOnly));

        Application::init();
        Application& application = Application::instance();
        NotingListener listener;
        application.addNewDocumentListener(&listener);
        application.addCloseDocumentListener(&listener);
        application.addActiveDocumentListener(&listener);
        const auto documentAt = [](const QString& itsPath) {
            auto document = std::make_unique<Doc::Document>(nullptr);
            document->setFilePath(itsPath);
            return document;
        };
        auto old = documentAt("old"_s);
        application.setActivateDocument(old.get());
        auto other = path.isEmpty() ? nullptr : documentAt(path);

        QFETCH(bool, opens);
        layer.documentOpens = opens;
        layer.settings.insert("Print/resetCountAfterOpened"_s, resets);
        layer.calls.clear();
        if (verb == "new"_s) {
            application.newDocument(path);
        } else if (verb == "open"_s) {
            application.openDocument(path);
        } else if (verb == "close"_s) {
            application.closeDocument();
        } else {
            old.release();
            application.setActivateDocument(other.get());
        }
        QCOMPARE(layer.calls, lines(expected.toUtf8().constData()));

        if (application.activateDocument() != old.get() &&
            application.activateDocument() != other.get())
            delete application.activateDocument();
        Application::destruct();
    }

private:
    RecordingLayer& layer = RecordingLayer::instance();
};

QTEST_APPLESS_MAIN(tst_order)
#include "tst_order.moc"
