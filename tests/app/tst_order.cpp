#include "RecordingLayer.h"

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
    void updateAppStartFinishListener() override { RecordingLayer::note(QStringLiteral("told")); }
    void updateNewDocumentListener(Doc::Document* document) override { note("new", document); }
    void updateCloseDocumentListener(Doc::Document* document) override { note("close", document); }
    void updateActiveDocumentListener(Doc::Document* document) override
    {
        note("active", document);
    }
    static void note(const char* kind, const Doc::Document* document)
    {
        const auto nameOf = [](const Doc::Document* named) {
            return named ? named->filePath() : QStringLiteral("none");
        };
        RecordingLayer::note(QStringLiteral("%1 %2 while %3")
                                 .arg(QLatin1String(kind), nameOf(document),
                                      nameOf(Application::instance().activateDocument())));
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
    QTest::addColumn<QString>("operation");
    QTest::addColumn<bool>("opens");
    QTest::addColumn<bool>("resets");
    QTest::addColumn<QString>("expected");
    const QString created = QStringLiteral(R"(
        Doc::Storage
        Doc::Document
        )");
    const QString read = created + QStringLiteral(R"(Doc::Document::open(FILE)
        Core::Settings::value(Print/resetCountAfterOpened, bool false)
        )");
    const QString activated = QStringLiteral(R"(close old while old
        Core::Settings::setRunValue(File/Document, QString FILE)
        Core::Settings::setValue(File/Document, QString FILE)
        new FILE while FILE)");
    QTest::newRow("new") << "new FILE" << true << true
                         << created + QLatin1String("Doc::Document::setFilePath(FILE)\n") +
                                activated;
    QTest::newRow("opened, count reset")
        << "open FILE" << true << true
        << read + QLatin1String("Doc::DocObject::setPrintCountData(0 of 9)\n") + activated;
    QTest::newRow("opened, count kept") << "open FILE" << true << false << read + activated;
    QTest::newRow("does not open")
        << "open FILE" << false << true << created + QLatin1String(R"(Doc::Document::open(FILE)
        Doc::~Document(FILE))");
    QTest::newRow("directory") << "open DIRECTORY" << true << true << "";
    QTest::newRow("activated") << "activate b" << true << true << R"(Doc::~Document(old)
        Core::Settings::setRunValue(File/Document, QString b)
        Core::Settings::setValue(File/Document, QString b)
        active b while b)";
    QTest::newRow("none activated") << "activate" << true << true << R"(Doc::~Document(old)
        active none while none)";
    QTest::newRow("closed") << "close" << true << true << "close old while old";
}

void tst_order::documents()
{
    QFETCH(QString, operation);
    QFETCH(bool, resets);
    QFETCH(QString, expected);
    QTemporaryDir directory;
    const QString file = directory.filePath(QStringLiteral("piece.ovdoc"));
    for (QString* text : {&operation, &expected}) {
        text->replace(QLatin1String("FILE"), file);
        text->replace(QLatin1String("DIRECTORY"), directory.path());
    }
    const QString verb = operation.section(QLatin1Char(' '), 0, 0);
    const QString path = operation.section(QLatin1Char(' '), 1);
    if (verb == QLatin1String("open"))
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
    auto old = documentAt(QStringLiteral("old"));
    application.setActivateDocument(old.get());
    auto other = path.isEmpty() ? nullptr : documentAt(path);

    QFETCH(bool, opens);
    layer.documentOpens = opens;
    layer.settings.insert(QStringLiteral("Print/resetCountAfterOpened"), resets);
    layer.calls.clear();
    if (verb == QLatin1String("new")) {
        application.newDocument(path);
    } else if (verb == QLatin1String("open")) {
        application.openDocument(path);
    } else if (verb == QLatin1String("close")) {
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

QTEST_APPLESS_MAIN(tst_order)
#include "tst_order.moc"
