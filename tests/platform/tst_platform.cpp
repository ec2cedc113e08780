#include <support/Literals.h>

#include <ovcore/ConsoleObserver.h>
#include <ovcore/ConsoleSingleton.h>
#include <ovcore/Settings.h>
#include <ovdoc/DocObject.h>
#include <ovdoc/Document.h>
#include <ovdoc/Storage.h>
#include <ovshape/FontDatabase.h>

#include <QtTest>

#include <thread>
#include <vector>

using Core::ConsoleSingleton;
using Core::Settings;

namespace {

struct Counter : Core::ConsoleObserver
{
    void write(Severity, const QByteArray& line) override
    {
        ++calls;
        if (line == "detach")
            ConsoleSingleton::instance().detachObserver(other);
    }
    int calls = 0;
    Core::ConsoleObserver* other = nullptr;
};

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool write(const QString& path, const QByteArray& content)
{
    QFile file(path);
    return QDir().mkpath(QFileInfo(path).path()) && file.open(QIODevice::WriteOnly) &&
           file.write(content) == content.size();
}

} // namespace

/// What the library and its users rely on in the layer below.
class tst_platform : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void settings()
    {
        QTemporaryDir directory;
        const QString stored = "Group/stored"_s;
        const QString run = "Group/run"_s;
        const auto start = [&]() -> Settings& {
            Settings::instance().setApplicationDirPath(directory.path());
            Settings::instance().init();
            return Settings::instance();
        };

        Settings& early = Settings::instance();
        early.setValue(stored, 1);
        QCOMPARE(early.value(stored, 2).toInt(), 2);

        Settings& settings = start();
        QCOMPARE(settings.value(stored, 3).toInt(), 3);
        settings.setValue(stored, Q_UINT64_C(18446744073709551615));
        settings.setRunValue(run, 4);
        settings.setRunValue(stored, 5);
        QVERIFY(!settings.value(run).isValid());
        QCOMPARE(settings.value(stored).toULongLong(), Q_UINT64_C(18446744073709551615));
        QCOMPARE(settings.runValue(stored).toInt(), 5);
        QCOMPARE(settings.runValue("Group/none"_s, 6).toInt(), 6);
        QVERIFY(
            contentOf(directory.filePath("ovapp.ini"_s)).contains("stored=18446744073709551615"));

        Settings::destruct();
        Settings& fresh = start();
        QCOMPARE(fresh.value(stored).toULongLong(), Q_UINT64_C(18446744073709551615));
        QVERIFY(!fresh.runValue(run).isValid());
        Settings::destruct();
    }

    void settingsDirectories()
    {
        const QString executables = QCoreApplication::applicationDirPath();
        const QString plugins = QDir(executables).filePath("plugins"_s);
        QCOMPARE(Settings::instance().applicationDirPath(), executables);
        Settings::instance().setApplicationDirPath("/a"_s);
        QCOMPARE(Settings::instance().sysFontDirPath(), "/a/fonts"_s);
        QCOMPARE(Settings::instance().pluginDirPath(), plugins);
        Settings::instance().setPluginDirPath("/p"_s);
        QCOMPARE(Settings::instance().pluginDirPath(), "/p"_s);
        Settings::destruct();
        QCOMPARE(Settings::instance().applicationDirPath(), executables);
        Settings::destruct();
    }

    void consoleFromThreads()
    {
        constexpr int perThread = 500;
        Counter steady;
        ConsoleSingleton::instance().attachObserver(&steady);
        ConsoleSingleton::instance().attachObserver(&steady);
        std::vector<std::thread> threads;
        for (int number = 0; number < 2; ++number) {
            threads.emplace_back([number] {
                for (int i = 0; i < perThread; ++i) {
                    Counter passing;
                    ConsoleSingleton::instance().attachObserver(&passing);
                    ConsoleSingleton::instance().log("%d of thread %d", i, number);
                    ConsoleSingleton::instance().detachObserver(&passing);
                }
            });
        }
        for (std::thread& thread : threads)
            thread.join();
        ConsoleSingleton::instance().detachObserver(&steady);
        ConsoleSingleton::instance().log("to nobody");
        QCOMPARE(steady.calls, 2 * perThread);
    }

    void consoleObserverDetachesAnother()
    {
        Counter first;
        Counter second;
        first.other = &second;
        ConsoleSingleton::instance().attachObserver(&first);
        ConsoleSingleton::instance().attachObserver(&second);
        ConsoleSingleton::instance().log("detach");
        ConsoleSingleton::instance().detachObserver(&first);
        QCOMPARE(first.calls, 1);
        QCOMPARE(second.calls, 0);
    }

    void documentKeepsWhatItDoesNotKnow_data();
    void documentKeepsWhatItDoesNotKnow()
    {
        QFETCH(QByteArray, before);
        QTemporaryDir directory;
        const QString path = directory.filePath("piece.ovdoc"_s);
        QVERIFY(write(path, before));

        Doc::Document document(new Doc::Storage);
        QVERIFY(document.open(path));
        Laser::PrintCountParams counts;
        counts.setFinishedCount(2);
        counts.setTargetCount(2147483647);
        document.storage()->queryDocObjectDirect()->setPrintCountData(counts);
#ifdef Q_OS_UNIX
        // Another file takes the former one's place; nothing is written over.
        QFile former(path);
        QVERIFY(former.open(QIODevice::ReadOnly));
#endif
        QVERIFY(document.save());
        QTEST(contentOf(path), "after");
#ifdef Q_OS_UNIX
        QCOMPARE(former.readAll(), before);
#endif

        Doc::Document again(new Doc::Storage);
        QVERIFY(again.open(path));
        counts = again.storage()->queryDocObjectDirect()->printCountData();
        QCOMPARE(counts.finishedCount(), 2);
        QCOMPARE(counts.targetCount(), 2147483647);
    }

    void documentThatCannotBeSaved()
    {
        QTemporaryDir directory;
        Doc::Document document(new Doc::Storage);
        for (const QString& path : {directory.path(), directory.filePath("no/such"_s)}) {
            document.setFilePath(path);
            QVERIFY(!document.save());
        }
        QVERIFY(QDir(directory.path()).isEmpty());
    }

    void documentAfterFailedOpen()
    {
        QTemporaryDir directory;
        const QString good = directory.filePath("good"_s);
        const QString bad = directory.filePath("bad"_s);
        QVERIFY(write(good, R"({"format": "ovdoc", "version": 1, "printCount": {"finished": 4}})"));
        QVERIFY(write(bad, R"({"format": "ovdoc", "version": 1,
        "printCount": {"finished": 8, "target": "many"}})"));
        Doc::Document document(new Doc::Storage);
        QVERIFY(document.open(good));
        QVERIFY(!document.open(bad));
        QCOMPARE(document.filePath(), good);
        QCOMPARE(document.storage()->queryDocObjectDirect()->printCountData().finishedCount(), 4);
    }

    void fonts()
    {
        QTemporaryDir directory;
        const auto path = [&directory](const char* name) {
            return directory.filePath(QLatin1String(name));
        };
        for (const char* name : {"b.ttf", "a.OTF", "c.txt", "more/d.ttc"})
            QVERIFY(write(path(name), QByteArray()));

        FontLibrary::FontDatabase& fonts = FontLibrary::FontDatabase::instance();
        fonts.addFontsFromDirectory(path("missing"), true);
        fonts.addFontsFromDirectory(path("."), false);
        QCOMPARE(fonts.fontFiles(), QStringList({path("a.OTF"), path("b.ttf")}));
        fonts.addFontsFromDirectory(directory.path(), true);
        QCOMPARE(fonts.fontFiles(),
                 QStringList({path("a.OTF"), path("b.ttf"), path("more/d.ttc")}));
    }
};

// Not in the class, whose reader, moc, stumbles over such raw strings.
void tst_platform::documentKeepsWhatItDoesNotKnow_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("after");
    QTest::newRow("inside and out")
        << QByteArray(R"({"serial": 9007199254740993, "version": 1, "format": "ovdoc",
            "printCount": {"scrap": 1.50, "finished": -2147483648}, "a": [{"b}": "\"]"}, null]})")
        << QByteArray(R"({
    "serial": 9007199254740993,
    "version": 1,
    "format": "ovdoc",
    "printCount": { "scrap": 1.50, "finished": 2, "target": 2147483647 },
    "a": [{"b}": "\"]"}, null]
}
)");
    QTest::newRow("no counts, a mark before, names that are spelt differently")
        << QByteArray(
               "\xef\xbb\xbf {\"form\\u0061t\":\"ovdoc\",\"version\":1.0,\"PrintCount\":0}\n")
        << QByteArray(R"({
    "form\u0061t": "ovdoc",
    "version": 1.0,
    "PrintCount": 0,
    "printCount": { "finished": 2, "target": 2147483647 }
}
)");
    QTest::newRow("counts twice, the last ones hold")
        << QByteArray(R"({"printCount": 1, "format": "ovdoc", "version": 1,
            "printCount": {"new": {}, "target": 5}})")
        << QByteArray(R"({
    "printCount": 1,
    "format": "ovdoc",
    "version": 1,
    "printCount": { "new": {}, "target": 2147483647, "finished": 2 }
}
)");
}

QTEST_GUILESS_MAIN(tst_platform)
#include "tst_platform.moc"
