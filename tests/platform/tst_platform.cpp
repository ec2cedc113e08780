#include <support/Files.h>
#include <support/Literals.h>
#include <support/Tools.h>

#include <ovcore/ConsoleObserverFile.h>
#include <ovcore/ConsoleSingleton.h>
#include <ovcore/Settings.h>
#include <ovdoc/DocObject.h>
#include <ovdoc/Document.h>
#include <ovdoc/Storage.h>
#include <ovshape/FontDatabase.h>
#include <system/ProcessInterrupt.h>

#include <QtTest>

#include <filesystem>
#include <optional>
#include <thread>

#ifdef Q_OS_UNIX
#include <csignal>
#include <sys/resource.h>
#include <unistd.h>
#endif

using Core::ConsoleSingleton;
using Core::Settings;

// The documents are outside the class, since moc does not parse these raw strings correctly.

/// Documents with unknown members, before and after a change of their counts.
const QByteArray changes[][2] = {
    // No counts, and a byte order mark at the beginning.
    {"\xef\xbb\xbf{\"form\\u0061t\":\"ovdoc\",\"version\":1.0,"
     R"("PrintCount":9007199254740993, "a":[{"b}": "\"]"}, null, "\\", "}"]})",
     R"({
    "form\u0061t": "ovdoc",
    "version": 1.0,
    "PrintCount": 9007199254740993,
    "a": [{"b}": "\"]"}, null, "\\", "}"],
    "printCount": { "finished": 2, "target": 9 }
}
)"},
    // Members whose names are similar to those of the counts.
    {"{\"print\\u0043ount\": {\"new\": 1.50, \"\xef\xbb\xbftarget\": 3, \"finished\": -2147483648,"
     "\"\\ufefffinished\": 7}, \"format\": \"ovdoc\", \"version\": 1, \"\xef\xbb\xbfversion\": 2}",
     "{\n    \"print\\u0043ount\": { \"new\": 1.50, \"\xef\xbb\xbftarget\": 3, \"finished\": 2, "
     "\"\\ufefffinished\": 7, \"target\": 9 },\n    \"format\": \"ovdoc\",\n    \"version\": 1,\n"
     "    \"\xef\xbb\xbfversion\": 2\n}\n"}};

const QByteArray startOfCounts = R"({"format": "ovdoc", "version": 1, "printCount": )";

/// Invalid documents, and a part of the reason.
const std::pair<QByteArray, QString> invalidDocuments[] = {
    {"", "it is empty"_s},
    {"[]", "not a JSON object"_s},
    {"{\"\xc3\xb6\": 1,\n\"\xc3\xb6\xc3\xb6\": x}", "line 2, column 7: "_s},
    {"{\"format\": \"ovdoc\", \"version\": 1, \"not UTF-8\": \"\xff\"}", "invalid JSON"_s},
    {QByteArray(50 << 20, '['), "invalid JSON"_s},
    {R"({"version": 1})", R"("format" is missing)"_s},
    {R"({"format": "OVDOC", "version": 1})", R"("format" has an unexpected value)"_s},
    {R"({"format": "ovdoc", "form\u0061t": "ovdoc", "version": 1})", R"("format" is duplicate)"_s},
    {R"({"format": "ovdoc"})", R"("version" is missing)"_s},
    {R"({"format": "ovdoc", "version": 2})", R"("version" has an)"_s},
    {startOfCounts + "null}", R"("printCount" has an)"_s},
    {startOfCounts + R"({"finished": 8, "target": 2147483648}})", R"("target" has an)"_s},
    {startOfCounts + R"({"finished": 1.5}})", R"("finished" has an)"_s},
    {startOfCounts + R"({"target": 2, "a": 1, "t\u0061rget": 2}})", R"("target" is duplicate)"_s}};

#ifdef Q_OS_UNIX
/// Limits the size of all files that this process writes, as a full disk would.
void limitFileSize(rlim_t size)
{
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit limit;
    getrlimit(RLIMIT_FSIZE, &limit);
    limit.rlim_cur = qMin(size, limit.rlim_max);
    setrlimit(RLIMIT_FSIZE, &limit);
}
#endif

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

/// The guarantees of the layer below and of the operating-system calls.
class tst_platform : public QObject
{
    Q_OBJECT

    std::optional<QTemporaryDir> _directory;

    QString path(const QString& name) const { return _directory->filePath(name); }
    Settings& openSettings(const QString& directory = QString()) const
    {
        Settings::instance().setApplicationDirPath(path(directory));
        Settings::instance().init();
        return Settings::instance();
    }

private Q_SLOTS:
    void init() { _directory.emplace(); }
    void cleanup() { Settings::destruct(); }

#ifdef Q_OS_UNIX
    void interruptsOneProcessOnly()
    {
        // In a separate process group, so that a signal to the group would end only this process.
        QCOMPARE(::setpgid(0, 0), 0);
        QVERIFY(!System::interruptProcess(0));
    }
#endif

    void settings()
    {
        const QString executables = QCoreApplication::applicationDirPath();
        const QString stored = "Group/stored"_s;
        Settings& early = Settings::instance();
        early.setValue(stored, 1);
        QCOMPARE(early.value(stored, 2).toInt(), 2);
        QCOMPARE(early.applicationDirPath(), executables);

        Settings& settings = openSettings();
        QCOMPARE(settings.sysFontDirPath(), path("fonts"_s));
        QCOMPARE(settings.pluginDirPath(), QDir(executables).filePath("plugins"_s));
#ifdef Q_OS_LINUX
        qputenv("XDG_DATA_HOME", "/user");
        QCOMPARE(settings.usrFontDirPath(), "/user/ovapp/fonts"_s);
#endif
        settings.setPluginDirPath("/p"_s);
        QCOMPARE(settings.pluginDirPath(), "/p"_s);
        settings.setRunValue(stored, 3);
        QCOMPARE(settings.value(stored, 4).toInt(), 4);
        openSettings("other"_s);
        settings.setValue(stored, Q_UINT64_C(18446744073709551615));
        QCOMPARE(settings.value(stored).toULongLong(), Q_UINT64_C(18446744073709551615));
        QCOMPARE(settings.runValue(stored).toInt(), 3);
        QCOMPARE(settings.runValue("Group/none"_s, 6).toInt(), 6);
        QVERIFY(contentOf(path("ovapp.ini"_s)).contains("stored=18446744073709551615"));

        Settings::destruct();
        QCOMPARE(Settings::instance().applicationDirPath(), executables);
        Settings& fresh = openSettings();
        QCOMPARE(fresh.value(stored).toULongLong(), Q_UINT64_C(18446744073709551615));
        QVERIFY(!fresh.runValue(stored).isValid());
    }

    void consoleServesSeveralThreads()
    {
        constexpr int perThread = 500;
        Counter steady;
        const auto run = [] {
            for (int i = 0; i < perThread; ++i) {
                Counter passing;
                ConsoleSingleton::instance().attachObserver(&passing);
                ConsoleSingleton::instance().log("%d", i);
                ConsoleSingleton::instance().detachObserver(&passing);
            }
        };
        ConsoleSingleton::instance().attachObserver(&steady);
        ConsoleSingleton::instance().attachObserver(&steady);
        std::thread thread(run);
        run();
        thread.join();

        ConsoleSingleton::instance().log("%s", "");
        Counter other;
        steady.other = &other;
        ConsoleSingleton::instance().attachObserver(&other);
        ConsoleSingleton::instance().log("detach");
        ConsoleSingleton::instance().detachObserver(&steady);
        ConsoleSingleton::instance().log("to nobody");
        QCOMPARE(steady.calls, 2 * perThread + 2);
        QCOMPARE(other.calls, 0);
    }

#ifdef Q_OS_UNIX
    void logSurvivesFullDisk()
    {
        const QString file = path("log"_s);
        const auto severity = Core::ConsoleObserver::Severity::Log;
        limitFileSize(6);
        {
            Core::ConsoleObserverFile log(file);
            for (const char* line : {"one", "two", "three"})
                log.write(severity, line);
        }
        limitFileSize(RLIM_INFINITY);
        QCOMPARE(contentOf(file), QByteArray("one\ntw"));
        Core::ConsoleObserverFile(file).write(severity, "four");
        QCOMPARE(contentOf(file), QByteArray("one\ntw\nfour\n"));
    }
#endif

    void documentKeepsUnknownMembers()
    {
        Doc::Document document(new Doc::Storage);
        for (const auto& [before, after] : changes) {
            const QString file = path("piece.ovdoc"_s);
            const QString link = path("link"_s);
            writeFile(file, before);
            QFile::remove(link);
            std::filesystem::create_hard_link(file.toStdString(), link.toStdString());
            QVERIFY(document.open(file));
            Laser::PrintCountParams counts;
            counts.setFinishedCount(2);
            counts.setTargetCount(9);
            document.storage()->queryDocObjectDirect()->setPrintCountData(counts);
            QVERIFY(document.save());
            QCOMPARE(contentOf(file), after);
            QVERIFY(document.open(file) && document.save());
            QCOMPARE(contentOf(file), after);
            // The file has been replaced, not overwritten.
            QCOMPARE(contentOf(link), before);
        }
    }

    void documentIsUnchangedAfterFailures()
    {
        const QByteArray before = startOfCounts + "{\"finished\": 4}}";
        const QString good = path("good"_s);
        const QString bad = path("bad"_s);
        writeFile(good, before);
        Doc::Document document(new Doc::Storage);
        QVERIFY(document.open(good));
        const auto fails = [&document](const QString& file, const QString& error) {
            const bool isOpened = document.open(file);
            const QString reason = document.errorString();
            return !isOpened && reason.contains(error) && !reason.endsWith(u'.');
        };
        QVERIFY(fails(path("none"_s), "there is no such file"_s));
        QVERIFY(fails(_directory->path(), "it is a directory"_s));
#ifdef Q_OS_UNIX
        QVERIFY(fails("/dev/null"_s, "it is not a regular file"_s));
#endif
        for (const auto& [text, error] : invalidDocuments) {
            writeFile(bad, text);
            QVERIFY2(fails(bad, error), qPrintable(document.errorString()));
        }
        QCOMPARE(document.filePath(), good);
        QCOMPARE(document.storage()->queryDocObjectDirect()->printCountData().finishedCount(), 4);
#ifdef Q_OS_UNIX
        limitFileSize(16);
        QVERIFY(!document.save());
        limitFileSize(RLIM_INFINITY);
        QCOMPARE(document.errorString(), qt_error_string(EFBIG));
#endif
        for (const QString& file : {_directory->path(), path("no/such"_s)}) {
            document.setFilePath(file);
            QVERIFY(!document.save() && !document.errorString().isEmpty());
        }
        QCOMPARE(contentOf(good), before);
        QCOMPARE(QDir(_directory->path()).entryList(QDir::NoDotAndDotDot | QDir::AllEntries),
                 words("bad good"));
        document.setFilePath(good);
        QVERIFY(document.save() && document.errorString().isEmpty());
    }

    void fontsAreSortedAndUnique()
    {
        for (const QString& name : words("b.ttf a.OTF c.txt more/d.ttc"))
            writeFile(path(name));
        FontLibrary::FontDatabase& fonts = FontLibrary::FontDatabase::instance();
        fonts.addFontsFromDirectory(path("."_s), false);
        fonts.addFontsFromDirectory(_directory->path(), true);
        QCOMPARE(fonts.fontFiles(),
                 QStringList({path("a.OTF"_s), path("b.ttf"_s), path("more/d.ttc"_s)}));
    }
};

QTEST_GUILESS_MAIN(tst_platform)
#include "tst_platform.moc"
