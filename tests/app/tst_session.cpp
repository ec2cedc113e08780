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

using App::Application;

namespace {

QStringList record;

/// Records `what` and the state during it: the print count of a new document, the active document
/// and the setting "File/Document".
void recordState(QString what)
{
    const Doc::Document* active = Application::instance().activateDocument();
    if (what.startsWith("new"_s)) {
        const auto count = active->storage()->queryDocObjectDirect()->printCountData();
        what += " %1/%2"_s.arg(count.finishedCount()).arg(count.targetCount());
    }
    const Core::Settings& settings = Core::Settings::instance();
    const QVariant stored = settings.value("File/Document"_s);
    const QVariant run = settings.runValue("File/Document"_s);
    record.append("%1: %2 %3"_s.arg(what, nameOf(active), stored.toString()));
    if (run != stored)
        record.last() += " in this run "_s + run.toString();
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
        for (const char* column : {"active", "action", "expected"})
            QTest::addColumn<QString>(column);
        // Each step with the active document and the setting "File/Document" at that time.
        const char* const rows[][3] = {
            {"none", "new n", "new n 0/0: n n, return n: n n"},
            {"a", "new n", "close a: a a, new n 0/0: n n, return n: n n"},
            {"a", "new b", "close a: a a, new b 5/9: b b, return b: b b"},
            {"a", "new damaged", "return none: a a"},
            {"a", "new .", "return none: a a"},
            {"a", "new", "return none: a a"},
            {"a", "new missing/n", "return none: a a"},
            {"none", "open b", "new b 5/9: b b, return b: b b"},
            {"a", "reset b", "close a: a a, new b 0/9: b b, return b: b b"},
            {"a", "open damaged", "return none: a a"},
            {"a", "open .", "return none: a a"},
            {"a", "open n", "return none: a a"},
            {"a", "open ./a", "return a: a a"},
            {"a", "open A", "close a: a a, new A 0/0: A A, return A: A A"},
            {"a", "open link.lnk",
             "close a: a a, new link.lnk 0/0: link.lnk link.lnk, return link.lnk: link.lnk "
             "link.lnk"},
            {"a", "open more/a",
             "close a: a a, new more/a 0/0: more/a more/a, return more/a: more/a more/a"},
            {"none", "activate b", "active b: b b, return b: b b"},
            {"a", "activate b", "delete a: a a, active b: b b, return b: b b"},
            {"a", "activate none", "delete a: a a, active none: none a, return none: none a"},
            {"a", "activate a", "return a: a a"},
            {"none", "activate none", "return none: none before"},
            {"a", "close", "close a: a a, return true: none a"},
            {"none", "close", "return false: none before"},
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
        Listener listener(recordState);
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
        recordState("return "_s + result);
        QTEST(record.join(", "_s), "expected");
        QVERIFY(!QFile::exists("n"_s));
        QCOMPARE(contentOf("b"_s), counted);

        if (!expected.startsWith("delete"_s) && previous != application.activateDocument())
            delete previous;
        delete application.activateDocument();
    }
};

QTEST_GUILESS_MAIN(tst_session)
#include "tst_session.moc"
