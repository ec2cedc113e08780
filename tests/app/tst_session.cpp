#include <support/ConsoleRecorder.h>
#include <support/Extension.h>
#include <support/Listener.h>
#include <support/Literals.h>
#include <support/Session.h>

#include <ovcore/BoardEthDescHandler.h>
#include <ovdoc/Storage.h>
#include <registries/ExtendPluginRegistry.h>
#include <system/ExecutionState.h>

#include <QtTest>

#ifdef Q_OS_UNIX
#include <sys/stat.h>
#endif

using App::Application;

// Outside the class, since moc does not parse these raw strings correctly.
const QByteArray invalidDocuments[] = {
    "",
    "to be marked",
    R"({"format": "ovdoc", "version": 1)",
    R"({"format": "ovdoc", "version": 1}{})",
    R"([{"format": "ovdoc", "version": 1}])",
    "{\"format\": \"ovdoc\", \"version\": 1, \"not UTF-8\": \"\xff\"}",
    R"({"version": 1})",
    R"({"format": "OVDOC", "version": 1})",
    R"({"format": "ovdoc"})",
    R"({"format": "ovdoc", "version": 2})",
    R"({"format": "ovdoc", "version": "1"})",
    R"({"format": "ovdoc", "version": 1, "printCount": []})",
    R"({"format": "ovdoc", "version": 1, "printCount": null})",
    R"({"format": "ovdoc", "version": 1, "printCount": {"finished": "7"}})",
    R"({"format": "ovdoc", "version": 1, "printCount": {"finished": 1.5}})",
    R"({"format": "ovdoc", "version": 1, "printCount": {"target": 2147483648}})",
    R"({"format": "ovdoc", "version": 1, "printCount": {"target": -2147483649}})",
    R"({"format": "ovdoc", "version": 1, "printCount": {"target": 1e300}})",
    R"({"format": "ovdoc", "version": 1, "form\u0061t": "ovdoc"})",
    R"({"version": 1, "format": "ovdoc", "version": 1})",
    R"({"format": "ovdoc", "version": 1, "printCount": {}, "printCount": {"target": 1}})",
    R"({"format": "ovdoc", "version": 1, "printCount": {"finished": 2, "fin\u0069shed": 2}})",
    R"({"format": "ovdoc", "version": 1, "printCount": {"target": 2, "finished": 1, "target": 3}})",
    QByteArray(50 << 20, '['),
};

/// The library with the layer below: the log file, the state after a shutdown, and invalid
/// documents.
class tst_session : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void logFile()
    {
        const QByteArray longLine(1 << 20, 'x');
        const ConsoleRecorder console;
        Session session("[Debug]\nfile=true\n");
        session.application().doAppStartFinished();
        Core::ConsoleSingleton::instance().log("%s", longLine.constData());
        Core::ConsoleSingleton::instance().warning("two\nlines\r\t\x1b[0m\\n\x7f");
        QVERIFY(console.lines.last().startsWith("warning: two"));
        const QString log = session.path("log.txt"_s);
        const QByteArrayList written = contentOf(log).split('\n');
        QCOMPARE(written, QByteArrayList({"Application::attachObservers.",
                                          "Application::doAppStartFinished:: application started.",
                                          longLine, "two\\nlines\\r\\t\\x1b[0m\\\\n\\x7f", ""}));

        Application::destruct();
        QCOMPARE(console.lines.last(), "destruct application.");
        QCOMPARE(contentOf(log).split('\n'), written);
        Core::Settings::instance().setApplicationDirPath(QFileInfo(log).path());
        Application::init();
        Application::attachObservers();
        QCOMPARE(contentOf(log).split('\n').size(), written.size() + 2);
    }

    void secondSessionStartsFresh()
    {
        // The library must not delete any of these; they are not on the heap.
        Listener listener([](const QString&) {});
        Extension extension;
        Doc::Document document(new Doc::Storage);
        document.setFilePath("left.ovdoc"_s);
        {
            const Session session("[Board]\ntype=6\n");
            QCOMPARE(System::setThreadExecutionState(0x80000001u), 0x80000041u);
            QCOMPARE(Core::BoardEthDescHandler::instance()->currentBoardEthDescType(), 6);
            Core::BoardEthDescHandler::instance()->setCurrentBoardEthDescType(8);
            Core::BoardEthDescHandler::init();
            QCOMPARE(Core::BoardEthDescHandler::instance()->currentBoardEthDescType(), 8);
            App::ExtendPluginRegistry::instance().registerExtendInfo(&extension);
            add(session.application(), &listener);
            session.application().setActivateDocument(&document);
        }
        QCOMPARE(System::setThreadExecutionState(0x80000000u), 0x80000000u);
        QVERIFY(!Core::BoardEthDescHandler::instance());
        const Session session("[Board]\ntype=left\n");
        QCOMPARE(Core::BoardEthDescHandler::instance()->currentBoardEthDescType(), 1);
        QCOMPARE(App::ExtendPluginRegistry::instance().count(), 0);
        QVERIFY(!session.application().activateDocument());
        QVERIFY(!Core::Settings::instance().runValue("File/Document"_s).isValid());
    }

    void invalidDocumentsAreRejected()
    {
        const Session session;
        for (const QByteArray& content : invalidDocuments) {
            const QString path = session.write("piece.ovdoc"_s, content);
            QVERIFY2(!session.application().openDocument(path), content.left(80).constData());
            QVERIFY2(!session.application().newDocument(path), content.left(80).constData());
        }
#ifdef Q_OS_UNIX
        const QString pipe = session.path("pipe"_s);
        QCOMPARE(mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
        QVERIFY(!session.application().openDocument(pipe));
        QVERIFY(!session.application().newDocument(pipe));
#endif
        QVERIFY(!session.application().activateDocument());
    }
};

QTEST_GUILESS_MAIN(tst_session)
#include "tst_session.moc"
