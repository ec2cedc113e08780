#include <support/Literals.h>
#include <support/Session.h>

#include <app/ActiveDocumentListener.h>
#include <app/CloseDocumentListener.h>
#include <app/NewDocumentListener.h>
#include <ovdoc/DocObject.h>
#include <ovdoc/Document.h>
#include <ovdoc/Storage.h>

#include <QSettings>
#include <QtTest>

#include <functional>
#include <memory>

#ifdef Q_OS_UNIX
#include <sys/stat.h>
#endif

using App::Application;

namespace {

const QByteArray validDocument =
    R"({"format": "ovdoc", "version": 1, "printCount": {"finished": 7, "target": 9}})";

struct TrackedDocument : Doc::Document
{
    TrackedDocument(const QString& path, bool& deleted)
        : Doc::Document(new Doc::Storage), _deleted(deleted)
    {
        setFilePath(path);
    }
    ~TrackedDocument() override { _deleted = true; }

    bool& _deleted;
};

QString nameOf(const Doc::Document* document)
{
    return document ? QFileInfo(document->filePath()).fileName() : "none"_s;
}

/// Writes down what the three kinds of document listeners are told, and which document the
/// application object holds at that moment.
struct Witness : App::NewDocumentListener, App::CloseDocumentListener, App::ActiveDocumentListener
{
    Witness()
    {
        Application::instance().addNewDocumentListener(this);
        Application::instance().addCloseDocumentListener(this);
        Application::instance().addActiveDocumentListener(this);
    }
    void updateNewDocumentListener(Doc::Document* document) override { note("new", document); }
    void updateCloseDocumentListener(Doc::Document* document) override { note("close", document); }
    void updateActiveDocumentListener(Doc::Document* document) override
    {
        note("active", document);
    }
    void note(const char* kind, const Doc::Document* document)
    {
        seen.append("%1 %2 while %3"_s.arg(QLatin1String(kind), nameOf(document),
                                           nameOf(Application::instance().activateDocument())));
    }

    QStringList seen;
};

/// An application with the files that the rows work on; "a" is the active document, or none is.
struct Workshop
{
    explicit Workshop(bool withActiveDocument)
    {
        QFile::link(session.path("a"_s), session.path("link.lnk"_s));
        QDir(session.path(QString())).mkdir("more"_s);
        for (const char* name : {"a", "A", "other", "more/a"})
            session.write(QLatin1String(name), validDocument);
        session.write("damaged"_s, "{");
        if (withActiveDocument) {
            first = new TrackedDocument(session.path("a"_s), firstDeleted);
            session.application().setActivateDocument(first);
        }
    }

    QString path(const char* name) const { return session.path(QLatin1String(name)); }

    Session session;
    Doc::Document* first = nullptr;
    bool firstDeleted = false;
};

/// Does one thing to the application and tells what came of it.
using Operation = std::function<QString(Application&, const Workshop&)>;

Operation newDocument(const char* name)
{
    return [name](Application& application, const Workshop& workshop) {
        return nameOf(application.newDocument(*name ? workshop.path(name) : QString()));
    };
}

Operation openDocument(const char* name)
{
    return [name](Application& application, const Workshop& workshop) {
        return nameOf(application.openDocument(workshop.path(name)));
    };
}

Operation activate(const std::function<Doc::Document*(const Workshop&)>& document)
{
    return [document](Application& application, const Workshop& workshop) {
        application.setActivateDocument(document(workshop));
        return nameOf(application.activateDocument());
    };
}

QString closeDocument(Application& application, const Workshop&)
{
    return application.closeDocument() ? "true"_s : "false"_s;
}

} // namespace

Q_DECLARE_METATYPE(Operation)

class tst_documents : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void states_data()
    {
        QTest::addColumn<bool>("active");
        QTest::addColumn<Operation>("operation");
        QTest::addColumn<QString>("result");
        QTest::addColumn<QStringList>("told");
        QTest::addColumn<QString>("activeAfter");
        QTest::addColumn<bool>("deleted");

        using Told = QStringList;
        const auto told = [](const char* text) { return QString::fromUtf8(text).split(u';'); };
        const auto second = [](const Workshop& workshop) {
            auto document = new Doc::Document(new Doc::Storage);
            document->setFilePath(workshop.path("b"));
            return document;
        };
        const auto none = [](const Workshop&) -> Doc::Document* { return nullptr; };
        const auto same = [](const Workshop& workshop) { return workshop.first; };

        QTest::newRow("none, new")
            << false << newDocument("n") << "n" << told("new n while n") << "n" << false;
        QTest::newRow("a, new") << true << newDocument("n") << "n"
                                << told("close a while a;new n while n") << "n" << false;
        QTest::newRow("none, opened by new") << false << newDocument("other") << "other"
                                             << told("new other while other") << "other" << false;
        for (const char* path : {"", "damaged", "missing/n", "."}) {
            QTest::addRow("none, new fails on '%s'", path)
                << false << newDocument(path) << "none" << Told() << "none" << false;
            QTest::addRow("a, new fails on '%s'", path)
                << true << newDocument(path) << "none" << Told() << "a" << false;
        }
        for (const char* path : {"n", "damaged", "missing/n", "."}) {
            QTest::addRow("none, open fails on '%s'", path)
                << false << openDocument(path) << "none" << Told() << "none" << false;
            QTest::addRow("a, open fails on '%s'", path)
                << true << openDocument(path) << "none" << Told() << "a" << false;
        }
        QTest::newRow("a, open itself")
            << true << openDocument("a") << "a" << Told() << "a" << false;
        QTest::newRow("a, open in other letter case")
            << true << openDocument("A") << "A" << told("close a while a;new A while A") << "A"
            << false;
#ifdef Q_OS_UNIX
        QTest::newRow("a, open by a link to it")
            << true << openDocument("link.lnk") << "link.lnk"
            << told("close a while a;new link.lnk while link.lnk") << "link.lnk" << false;
#endif
        QTest::newRow("a, open the same name elsewhere")
            << true << openDocument("more/a") << "a" << told("close a while a;new a while a")
            << "more/a" << false;
        QTest::newRow("a, open") << true << openDocument("other") << "other"
                                 << told("close a while a;new other while other") << "other"
                                 << false;
        QTest::newRow("none, open") << false << openDocument("other") << "other"
                                    << told("new other while other") << "other" << false;
        QTest::newRow("none, activate")
            << false << activate(second) << "b" << told("active b while b") << "b" << false;
        QTest::newRow("a, activate")
            << true << activate(second) << "b" << told("active b while b") << "b" << true;
        QTest::newRow("a, activate none")
            << true << activate(none) << "none" << told("active none while none") << "none" << true;
        QTest::newRow("a, activate itself")
            << true << activate(same) << "a" << Told() << "a" << false;
        QTest::newRow("none, activate none")
            << false << activate(none) << "none" << Told() << "none" << false;
        QTest::newRow("a, close") << true << Operation(closeDocument) << "true"
                                  << told("close a while a") << "none" << false;
        QTest::newRow("none, close")
            << false << Operation(closeDocument) << "false" << Told() << "none" << false;
    }

    void states()
    {
        QFETCH(bool, active);
        QFETCH(Operation, operation);
        QFETCH(QString, activeAfter);
        QFETCH(bool, deleted);
        Workshop workshop(active);
        Application& application = workshop.session.application();
        Witness witness;

        QTEST(operation(application, workshop), "result");
        QTEST(witness.seen, "told");
        QCOMPARE(nameOf(application.activateDocument()), QFileInfo(activeAfter).fileName());
        QCOMPARE(workshop.firstDeleted, deleted);

        // The path is that of the last document that was active, and never cleared.
        QString path;
        if (activeAfter != "none"_s)
            path = workshop.session.path(activeAfter);
        else if (active)
            path = workshop.path("a");
        const QString key = "File/Document"_s;
        const QSettings stored(workshop.path("ovapp.ini"), QSettings::IniFormat);
        QCOMPARE(Core::Settings::instance().runValue(key).toString(), path);
        QCOMPARE(stored.value(key).toString(), path);
        QCOMPARE(stored.contains(key), !path.isEmpty());
        QVERIFY(!QFile::exists(workshop.path("n")));

        if (application.activateDocument() != workshop.first)
            delete application.activateDocument();
        if (!workshop.firstDeleted)
            delete workshop.first;
    }

    void pathAsGiven()
    {
        const Session session;
        session.write("piece.ovdoc"_s, validDocument);
        const QString before = QDir::currentPath();
        QVERIFY(QDir::setCurrent(session.path(QString())));
        const QString relative = "./piece.ovdoc"_s;
        const std::unique_ptr<Doc::Document> document(session.application().openDocument(relative));
        const Doc::Document* again =
            session.application().openDocument(QFileInfo(relative).absoluteFilePath());
        QVERIFY(QDir::setCurrent(before));

        QVERIFY(document);
        QCOMPARE(document->filePath(), relative);
        QCOMPARE(Core::Settings::instance().runValue("File/Document"_s).toString(), relative);
        QCOMPARE(again, document.get());
    }

    void countAfterOpening_data()
    {
        QTest::addColumn<QByteArray>("settings");
        QTest::addColumn<int>("finished");
        QTest::newRow("kept") << QByteArray() << 7;
        QTest::newRow("reset") << QByteArray("[Print]\nresetCountAfterOpened=true\n") << 0;
    }

    void countAfterOpening()
    {
        struct Reader : App::NewDocumentListener
        {
            void updateNewDocumentListener(Doc::Document* document) override
            {
                counts = document->storage()->queryDocObjectDirect()->printCountData();
            }
            Laser::PrintCountParams counts;
        };

        QFETCH(QByteArray, settings);
        const Session session(settings);
        Reader reader;
        session.application().addNewDocumentListener(&reader);
        const std::unique_ptr<Doc::Document> document(
            session.application().openDocument(session.write("piece.ovdoc"_s, validDocument)));
        QVERIFY(document);
        QTEST(reader.counts.finishedCount(), "finished");
        QCOMPARE(reader.counts.targetCount(), 9);
    }

    void noDocument_data()
    {
        QTest::addColumn<QByteArray>("content");
        const auto counts = [](const QByteArray& printCount) {
            return R"({"format": "ovdoc", "version": 1, "printCount": )" + printCount + '}';
        };
        QTest::newRow("empty") << QByteArray("");
        QTest::newRow("text") << QByteArray("to be marked");
        QTest::newRow("truncated") << validDocument.chopped(1);
        QTest::newRow("more after the end") << validDocument + "{}";
        QTest::newRow("no object") << '[' + validDocument + ']';
        QTest::newRow("no UTF-8") << QByteArray(R"({"format": "ovdoc", "version": 1, "x": ")") +
                                         "\xff\"}";
        QTest::newRow("no format") << QByteArray(R"({"version": 1})");
        QTest::newRow("other format") << QByteArray(R"({"format": "OVDOC", "version": 1})");
        QTest::newRow("no version") << QByteArray(R"({"format": "ovdoc"})");
        QTest::newRow("later version") << QByteArray(R"({"format": "ovdoc", "version": 2})");
        QTest::newRow("version as text") << QByteArray(R"({"format": "ovdoc", "version": "1"})");
        QTest::newRow("counts as list") << counts("[]");
        QTest::newRow("counts as null") << counts("null");
        QTest::newRow("count as text") << counts(R"({"finished": "7"})");
        QTest::newRow("fraction") << counts(R"({"finished": 1.5})");
        QTest::newRow("over 32 bits") << counts(R"({"target": 2147483648})");
        QTest::newRow("under 32 bits") << counts(R"({"target": -2147483649})");
        QTest::newRow("far over") << counts(R"({"target": 1e300})");
        QTest::newRow("50 MB of brackets") << QByteArray(50 << 20, '[');
    }

    void noDocument()
    {
        QFETCH(QByteArray, content);
        const Session session;
        const QString path = session.write("piece.ovdoc"_s, content);
        QVERIFY(!session.application().openDocument(path));
        QVERIFY(!session.application().newDocument(path));
        QVERIFY(!session.application().activateDocument());
    }

    void neitherFileNorDirectory()
    {
#ifdef Q_OS_UNIX
        const Session session;
        const QString pipe = session.path("pipe"_s);
        QCOMPARE(mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
        QVERIFY(!session.application().openDocument(pipe));
        QVERIFY(!session.application().newDocument(pipe));
#else
        QSKIP("named pipes do not stand in directories here");
#endif
    }
};

QTEST_GUILESS_MAIN(tst_documents)
#include "tst_documents.moc"
