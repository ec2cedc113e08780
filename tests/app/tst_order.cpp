#include "RecordingLayer.h"

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
                        App::CloseDocumentListener
{
    void updateAppStartFinishListener() override { RecordingLayer::note(QStringLiteral("told")); }
    void updateNewDocumentListener(Doc::Document* document) override
    {
        RecordingLayer::note(QStringLiteral("new ") + document->filePath());
    }
    void updateCloseDocumentListener(Doc::Document* document) override
    {
        RecordingLayer::note(QStringLiteral("close ") + document->filePath());
    }
};

QStringList lines(const char* text)
{
    QStringList result;
    for (const QString& line : QString::fromUtf8(text).split(QLatin1Char('\n')))
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
    void init();
    void startUp_data();
    void startUp();
    void startFinished_data();
    void startFinished();
    void shutdown_data();
    void shutdown();
    void documents_data();
    void documents();

private:
    RecordingLayer& layer = RecordingLayer::instance();
};

void tst_order::init()
{
    layer = RecordingLayer();
}

void tst_order::startUp_data()
{
    QTest::addColumn<bool>("toFile");
    QTest::newRow("no log file") << false;
    QTest::newRow("log file") << true;
}

void tst_order::startUp()
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
        layer.settings.insert(QStringLiteral("Debug/file"), true);
    else
        expected.erase(expected.begin() + 3, expected.begin() + 5);

    int checks = 0;
    layer.onCall = [&checks](const QString& call) {
        if (call == QLatin1String("Core::BoardEthDescHandler::init")) {
            QVERIFY(!Application::instance().activateDocument());
            ++checks;
        } else if (call == QLatin1String("Doc::ObjectGroupEntity::initPropertyType")) {
            QVERIFY(!App::CommInfoRegistry::instance());
            ++checks;
        } else if (call == QLatin1String("Core::SystemBackupManager::init")) {
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

void tst_order::startFinished_data()
{
    QTest::addColumn<QByteArray>("version");
    QTest::addColumn<QString>("stored");
    QTest::newRow("a version") << QByteArray("4.5.6") << "QString 4.5.6";
    QTest::newRow("none") << QByteArray() << "QString ";
}

void tst_order::startFinished()
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
             QStringList({QStringLiteral("Core::Settings::setValue(About/version, %1)").arg(stored),
                          QStringLiteral("told"),
                          QStringLiteral("Core::ConsoleSingleton::log(Application::"
                                         "doAppStartFinished:: application started.)")}));
    Application::destruct();
}

void tst_order::shutdown_data()
{
    QTest::addColumn<bool>("started");
    QTest::addColumn<bool>("toFile");
    QTest::newRow("after start-up") << true << false;
    QTest::newRow("with a log file") << true << true;
    QTest::newRow("without start-up") << false << false;
}

void tst_order::shutdown()
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

    layer.settings.insert(QStringLiteral("Debug/file"), toFile);
    if (started)
        Application::init();
    layer.calls.clear();
    layer.onCall = [started](const QString& call) {
        if (call == QLatin1String("Core::SystemBackupManager::destruct"))
            QCOMPARE(App::CommInfoRegistry::instance() != nullptr, started);
        else if (call == QLatin1String("FontLibrary::FontPluginLoader::destruct"))
            QVERIFY(!App::CommInfoRegistry::instance());
    };
    Application::destruct();
    QCOMPARE(layer.calls, expected);

    layer.calls.clear();
    layer.onCall = nullptr;
    Application::destruct();
    QVERIFY(layer.calls.filter(QStringLiteral("Console")).isEmpty());
}

void tst_order::documents_data()
{
    QTest::addColumn<bool>("exists");
    QTest::addColumn<bool>("opens");
    QTest::addColumn<bool>("resets");
    QTest::addColumn<QString>("expected");
    QTest::newRow("new") << false << true << true << R"(
        Doc::Storage
        Doc::Document
        Doc::Document::setFilePath(PATH)
        close old
        Core::Settings::setRunValue(File/Document, QString PATH)
        Core::Settings::setValue(File/Document, QString PATH)
        new PATH)";
    QTest::newRow("opened, count reset") << true << true << true << R"(
        Doc::Storage
        Doc::Document
        Doc::Document::open(PATH)
        Core::Settings::value(Print/resetCountAfterOpened, bool false)
        Doc::DocObject::setPrintCountData(0 of 9)
        close old
        Core::Settings::setRunValue(File/Document, QString PATH)
        Core::Settings::setValue(File/Document, QString PATH)
        new PATH)";
    QTest::newRow("opened, count kept") << true << true << false << R"(
        Doc::Storage
        Doc::Document
        Doc::Document::open(PATH)
        Core::Settings::value(Print/resetCountAfterOpened, bool false)
        close old
        Core::Settings::setRunValue(File/Document, QString PATH)
        Core::Settings::setValue(File/Document, QString PATH)
        new PATH)";
    QTest::newRow("does not open") << true << false << true << R"(
        Doc::Storage
        Doc::Document
        Doc::Document::open(PATH)
        Doc::~Document(PATH))";
}

void tst_order::documents()
{
    QFETCH(bool, exists);
    QFETCH(bool, opens);
    QFETCH(bool, resets);
    QFETCH(QString, expected);
    QTemporaryDir directory;
    const QString path = directory.filePath(QStringLiteral("piece.ovdoc"));
    if (exists)
        QVERIFY(QFile(path).open(QIODevice::WriteOnly));

    Application::init();
    NotingListener listener;
    Application::instance().addNewDocumentListener(&listener);
    Application::instance().addCloseDocumentListener(&listener);
    auto old = std::make_unique<Doc::Document>(nullptr);
    old->setFilePath(QStringLiteral("old"));
    Application::instance().setActivateDocument(old.get());

    layer.documentOpens = opens;
    layer.settings.insert(QStringLiteral("Print/resetCountAfterOpened"), resets);
    layer.calls.clear();
    const std::unique_ptr<Doc::Document> document(Application::instance().newDocument(path));
    QCOMPARE(document != nullptr, opens);
    QCOMPARE(layer.calls,
             lines(expected.replace(QLatin1String("PATH"), path).toUtf8().constData()));
    Application::destruct();
}

QTEST_APPLESS_MAIN(tst_order)
#include "tst_order.moc"
