#include <support/ConsoleRecorder.h>
#include <support/Literals.h>
#include <support/Session.h>

#include <app/AppStartFinishListener.h>
#include <ovcore/BoardEthDescHandler.h>
#include <ovcore/ConsoleSingleton.h>
#include <ovdoc/Document.h>
#include <ovdoc/Storage.h>
#include <registries/ExtendPluginInfo.h>
#include <registries/ExtendPluginRegistry.h>
#include <system/ExecutionState.h>

#include <QSettings>
#include <QtTest>

using App::Application;

namespace {

QByteArrayList linesOf(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return file.readAll().split('\n');
}

} // namespace

/// Start-up and shutdown on the real layer below: what is left of them on disk and in the system.
class tst_session : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void shutdownWithoutStartUp()
    {
        const ConsoleRecorder console;
        Application::destruct();
        QCOMPARE(console.lines, QByteArrayList());
    }

    void logFile()
    {
        const QByteArray longLine(1 << 20, 'x');
        ConsoleRecorder console;
        QByteArrayList written;
        QString log;
        {
            Session session("[Debug]\nfile=true\n");
            session.application().doAppStartFinished();
            Core::ConsoleSingleton::instance().log("%s", longLine.constData());
            Core::ConsoleSingleton::instance().warning("two\nlines\r\t\x1b[0m");
            log = session.path("log.txt"_s);
            written = linesOf(log);
            Application::destruct();
            QCOMPARE(linesOf(log), written);
            Core::Settings::instance().setApplicationDirPath(QFileInfo(log).path());
            Application::init();
            Application::attachObservers();
            QCOMPARE(linesOf(log).size(), written.size() + 2);
        }
        QCOMPARE(written, QByteArrayList({"Application::attachObservers.",
                                          "Application::doAppStartFinished:: application started.",
                                          longLine, "two\\nlines\\r\\t\\x1b[0m", ""}));
        QCOMPARE(console.lines.last(), "destruct application.");
    }

    void noLogFile()
    {
        ConsoleRecorder console;
        const Session session;
        QCOMPARE(console.lines, QByteArrayList({"Application::attachObservers."}));
        QVERIFY(!QFile::exists(session.path("log.txt"_s)));
    }

    void startFinished()
    {
        struct Second : App::AppStartFinishListener
        {
            void updateAppStartFinishListener() override { ++calls; }
            int calls = 0;
        };
        struct First : App::AppStartFinishListener
        {
            void updateAppStartFinishListener() override
            {
                Application::instance().addStartFinishListener(&second);
            }
            Second second;
        };

        const Session session;
        First first;
        session.application().addStartFinishListener(&first);
        session.application().doAppStartFinished();
        QCOMPARE(first.second.calls, 1);

        const QSettings onDisk(session.path("ovapp.ini"_s), QSettings::IniFormat);
        QCOMPARE(onDisk.value("About/version"_s).toString(), QStringLiteral(OVAPP_VERSION));
    }

    void keepsAwake()
    {
        {
            const Session session;
            QCOMPARE(System::setThreadExecutionState(0x80000041u), 0x80000041u);
        }
        QCOMPARE(System::setThreadExecutionState(0x80000000u), 0x80000000u);
    }

    void startsAgainAfresh()
    {
        struct Description : App::ExtendPluginInfo
        {
            QString description() const override { return QString(); }
            int supportedBoardTypes() const override { return 1; }
        };
        {
            const Session session("[Board]\ntype=6\n");
            QCOMPARE(Core::BoardEthDescHandler::instance()->currentBoardEthDescType(), 6);
            Core::BoardEthDescHandler::instance()->setCurrentBoardEthDescType(8);
            Description description;
            App::ExtendPluginRegistry::instance().registerExtendInfo(&description);
            session.application().newDocument(session.path("left.ovdoc"_s));
            delete session.application().activateDocument();
        }
        QVERIFY(!Core::BoardEthDescHandler::instance());
        const Session session("[Board]\ntype=left\n");
        QCOMPARE(Core::BoardEthDescHandler::instance()->currentBoardEthDescType(), 1);
        QCOMPARE(App::ExtendPluginRegistry::instance().count(), 0);
        QVERIFY(!session.application().activateDocument());
        QVERIFY(!Core::Settings::instance().runValue("File/Document"_s).isValid());
    }

    void directoryThatCannotBeWritten()
    {
        QTemporaryFile file;
        QVERIFY(file.open());
        // No one, not even the system's administrator, can write below a file.
        Core::Settings::instance().setApplicationDirPath(file.fileName());
        Application::init();
        Core::Settings::instance().setValue("Debug/file"_s, true);
        Application::attachObservers();
        Application::instance().doAppStartFinished();
        QCOMPARE(Core::Settings::instance().value("About/version"_s).toString(),
                 QStringLiteral(OVAPP_VERSION));
        Application::destruct();
        QCOMPARE(QFileInfo(file.fileName()).size(), 0);
    }

    void shutdownDeletesNothingItWasGiven()
    {
        struct Listener : App::AppStartFinishListener
        {
            explicit Listener(bool& deleted) : _deleted(deleted) {}
            ~Listener() override { _deleted = true; }
            void updateAppStartFinishListener() override {}
            bool& _deleted;
        };
        struct Document : Doc::Document
        {
            explicit Document(bool& deleted) : Doc::Document(new Doc::Storage), _deleted(deleted) {}
            ~Document() override { _deleted = true; }
            bool& _deleted;
        };

        bool listenerDeleted = false;
        bool documentDeleted = false;
        const auto listener = std::make_unique<Listener>(listenerDeleted);
        const auto document = std::make_unique<Document>(documentDeleted);
        {
            const Session session;
            session.application().addStartFinishListener(listener.get());
            session.application().setActivateDocument(document.get());
        }
        QVERIFY(!listenerDeleted);
        QVERIFY(!documentDeleted);
    }
};

QTEST_GUILESS_MAIN(tst_session)
#include "tst_session.moc"
