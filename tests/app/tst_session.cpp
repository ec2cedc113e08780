#include <support/ConsoleRecorder.h>
#include <support/Extension.h>
#include <support/Listener.h>
#include <support/Literals.h>
#include <support/Session.h>

#include <ovcore/BoardEthDescHandler.h>
#include <ovdoc/DocObject.h>
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
    "to be marked",
    R"({"format": "ovdoc", "version": 1)",
    R"([{"format": "ovdoc", "version": 1}])",
    "{\"format\": \"ovdoc\", \"version\": 1, \"not UTF-8\": \"\xff\"}",
    R"({"version": 1})",
    R"({"format": "OVDOC", "version": 1})",
    R"({"format": "ovdoc"})",
    R"({"format": "ovdoc", "version": 2})",
    R"({"format": "ovdoc", "version": "1"})",
    R"({"format": "ovdoc", "version": 1, "printCount": null})",
    R"({"format": "ovdoc", "version": 1, "printCount": {"finished": "7"}})",
    R"({"format": "ovdoc", "version": 1, "printCount": {"finished": 1.5}})",
    R"({"format": "ovdoc", "version": 1, "printCount": {"target": 2147483648}})",
    R"({"format": "ovdoc", "version": 1, "printCount": {"target": -2147483649}})",
    R"({"format": "ovdoc", "version": 1, "form\u0061t": "ovdoc"})",
    R"({"format": "ovdoc", "version": 1, "printCount": {}, "printCount": {"target": 1}})",
    R"({"format": "ovdoc", "version": 1, "printCount": {"target": 2, "finished": 1, "target": 3}})",
    QByteArray(50 << 20, '['),
};

namespace {

QStringList record;

/// Records `what` and the state during it: the active document and the setting "File/Document".
void recordState(const QString& what)
{
    const Doc::Document* active = Application::instance().activateDocument();
    const Core::Settings& settings = Core::Settings::instance();
    const QVariant stored = settings.value("File/Document"_s);
    const QVariant run = settings.runValue("File/Document"_s);
    record.append("%1: %2 %3"_s.arg(what, nameOf(active), stored.toString()));
    if (run != stored)
        record.last() += " in this run "_s + run.toString();
}

/// Records a notification, for a new document with the print count.
void recordNotification(const QString& notification)
{
    if (!notification.startsWith("new"_s))
        return recordState(notification);
    const Laser::PrintCountParams count = Application::instance()
                                              .activateDocument()
                                              ->storage()
                                              ->queryDocObjectDirect()
                                              ->printCountData();
    recordState("%1 %2/%3"_s.arg(notification).arg(count.finishedCount()).arg(count.targetCount()));
}

/// Records its deletion.
struct WatchedDocument : Doc::Document
{
    explicit WatchedDocument(const QString& path) : Doc::Document(new Doc::Storage)
    {
        setFilePath(path);
    }
    Q_DISABLE_COPY(WatchedDocument)
    ~WatchedDocument() override { recordState("delete "_s + filePath()); }
};

} // namespace

/// The library with the layer below: the log file, documents, and the state after a shutdown.
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

    void documents_data()
    {
        for (const char* column : {"active", "action", "result", "expected"})
            QTest::addColumn<QString>(column);
        // Each step with the active document and the setting "File/Document" at that time.
        const char* const rows[][4] = {
            {"none", "new n", "n", "new n 0/0: n n, end: n n"},
            {"a", "new n", "n", "close a: a a, new n 0/0: n n, end: n n"},
            {"a", "new b", "b", "close a: a a, new b 5/9: b b, end: b b"},
            {"a", "new damaged", "none", "end: a a"},
            {"a", "new .", "none", "end: a a"},
            {"a", "new", "none", "end: a a"},
            {"a", "new missing/n", "none", "end: a a"},
            {"none", "open b", "b", "new b 5/9: b b, end: b b"},
            {"a", "reset b", "b", "close a: a a, new b 0/9: b b, end: b b"},
            {"a", "open damaged", "none", "end: a a"},
            {"a", "open .", "none", "end: a a"},
            {"a", "open n", "none", "end: a a"},
            {"a", "open ./a", "a", "end: a a"},
            {"a", "open A", "A", "close a: a a, new A 0/0: A A, end: A A"},
            {"a", "open link.lnk", "link.lnk",
             "close a: a a, new link.lnk 0/0: link.lnk link.lnk, end: link.lnk link.lnk"},
            {"a", "open more/a", "more/a",
             "close a: a a, new more/a 0/0: more/a more/a, end: more/a more/a"},
            {"none", "activate b", "b", "active b: b b, end: b b"},
            {"a", "activate b", "b", "delete a: a a, active b: b b, end: b b"},
            {"a", "activate none", "none", "delete a: a a, active none: none a, end: none a"},
            {"a", "activate a", "a", "end: a a"},
            {"none", "activate none", "none", "end: none before"},
            {"a", "close", "true", "close a: a a, end: none a"},
            {"none", "close", "false", "end: none before"},
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
        QFETCH(QString, expected);
#ifndef Q_OS_UNIX
        if (action.endsWith("link.lnk"_s))
            QSKIP("Qt creates shortcuts instead of links on this system");
#endif
        const bool reset = action.startsWith("reset"_s);
        const Session session("[File]\nDocument=before\n"_s.toUtf8() +
                              (reset ? "[Print]\nresetCountAfterOpened=true\n" : ""));
        const QByteArray start = R"({"format": "ovdoc", "version": 1)";
        const QByteArray counted = start + R"(, "printCount": {"finished": 5, "target": 9}})";
        for (const char* name : {"a", "A", "more/a"})
            session.write(QLatin1String(name), start + '}');
        session.write("b"_s, counted);
        session.write("damaged"_s, start);
        QVERIFY(QDir::setCurrent(session.path("."_s)));
        const auto leave = qScopeGuard([] { QDir::setCurrent(QDir::tempPath()); });
        QFile::link("a"_s, "link.lnk"_s);
        Application& application = session.application();
        Core::Settings::instance().setRunValue("File/Document"_s, "before"_s);
        const auto documentAt = [](const QString& path) -> Doc::Document* {
            return path == "none"_s ? nullptr : new WatchedDocument(path);
        };
        Doc::Document* const previous = documentAt(active);
        application.setActivateDocument(previous);
        Listener listener(recordNotification);
        add(application, &listener);
        record.clear();

        const QString path = action.section(u' ', 1);
        QString result;
        if (action.startsWith("new"_s)) {
            result = nameOf(application.newDocument(path));
        } else if (action.startsWith("open"_s) || reset) {
            result = nameOf(application.openDocument(path));
        } else if (action == "close"_s) {
            result = application.closeDocument() ? "true"_s : "false"_s;
        } else {
            application.setActivateDocument(path == active ? previous : documentAt(path));
            result = nameOf(application.activateDocument());
        }
        recordState("end"_s);
        QTEST(result, "result");
        QTEST(record.join(", "_s), "expected");
        QVERIFY(!QFile::exists("n"_s));
        QCOMPARE(contentOf("b"_s), counted);

        if (!expected.startsWith("delete"_s) && previous != application.activateDocument())
            delete previous;
        delete application.activateDocument();
    }

    void invalidDocumentsAreRejected()
    {
        const Session session;
        for (const QByteArray& content : invalidDocuments) {
            const QString path = session.write("piece.ovdoc"_s, content);
            QVERIFY2(!session.application().openDocument(path), content.left(80).constData());
        }
#ifdef Q_OS_UNIX
        const QString pipe = session.path("pipe"_s);
        QCOMPARE(mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
        QVERIFY(!session.application().openDocument(pipe));
#endif
    }
};

QTEST_GUILESS_MAIN(tst_session)
#include "tst_session.moc"
