#include "PluginFixture.h"

#include <support/ConsoleRecorder.h>
#include <support/Tools.h>

#include <ovcore/BoardEthDescHandler.h>
#include <plugins/ExtendPluginInterface.h>
#include <system/LibraryFile.h>

#include <QtTest>

#include <climits>
#include <optional>
#include <tuple>

#ifdef Q_OS_UNIX
#include <sys/stat.h>
#else
#include <qt_windows.h>
#endif

using App::PluginInfo;
using App::PluginLoader;
using App::PluginRecord;
using Step = PluginLoader::Step;
using Verdict = PluginRecord::Verdict;

#ifdef Q_OF_ELF
#include <link.h>
#endif

/// Returns the version stamp in the metadata of a plug-in: a key and an array of one text.
static QByteArray stamp(const QByteArray& version, const QByteArray& key = "ovapp")
{
    return char(0x60 + key.size()) + key + "\x81" + char(0x60 + version.size()) + version;
}

/// Returns PluginB with another stamp of the same length.
static QByteArray stamped(const QByteArray& newStamp)
{
    return PluginFixture::built("PluginB"_s).replace(stamp(OVAPP_VERSION), newStamp);
}

/// Implements the interface but does not name it in Q_INTERFACES.
struct Undeclared : QObject, App::ExtendPluginInterface
{
    quint64 pluginID() const override { return 1; }
    int supportedBoardTypes() const override { return 2; }
    void start() override {}
    void stop() override {}
    PluginInfo pluginInfo() const override { return PluginInfo(); }
};

class tst_plugin_loader : public QObject
{
    Q_OBJECT

    std::optional<PluginFixture> _fixture;

    /// Returns the names of the first four plug-ins.
    static QString names()
    {
        QStringList all;
        for (int i = 0; i < 4; ++i)
            all += PluginLoader::pluginInfoOf(i).get("Name"_s).toString();
        return all.join(u',');
    }

private Q_SLOTS:
    void init() { _fixture.emplace(); }
    void cleanup()
    {
        PluginLoader::setStepHandler(nullptr);
        PluginLoader::setFileFilter(nullptr);
        _fixture.reset();
    }

    void info()
    {
        PluginInfo info;
        QCOMPARE(info.get("QtVersion"_s), QVariant(QString::fromLatin1(qVersion())));
        info.set("name"_s, QVariant());
        QCOMPARE(info.get("name"_s, 5), QVariant());
        QCOMPARE(info.get("Missing"_s, 5), QVariant(5));
        info.set("Name"_s, 2);
        QCOMPARE(info.keys(), words("Name QtVersion name"));
        const PluginInfo moved(std::move(info));
        QVERIFY(info.keys().isEmpty() && moved.keys().size() == 3);
    }

    void scansInOrder()
    {
        for (const QString& file :
             _fixture->plugins("b.dll A.dll X.DLL _.dll notes.txt dll old.dll.bak Sub2/y.dLl "
                               "sub/c.dll sub/de/e/p.dll dir.dll/in.dll"))
            writeFile(file);
        QCOMPARE(PluginLoader::pluginFiles(),
                 _fixture->plugins("_.dll A.dll b.dll X.DLL dir.dll/in.dll sub/c.dll "
                                   "sub/de/e/p.dll Sub2/y.dLl"));

        // A relative path is resolved once.
        _fixture->copy("PluginB", "b.dll");
        const QString current = QDir::currentPath();
        QVERIFY(QDir::setCurrent(_fixture->path(QString())));
        Core::Settings::instance().setPluginDirPath("plugins"_s);
        PluginLoader::loadPlugins(false);
        QVERIFY(QDir::setCurrent(current));
        RecordingPlugin::takeCalls();
        PluginLoader::unloadPlugins();
        QCOMPARE(RecordingPlugin::takeCalls(), calls("PluginB", "stop destroy"));
    }

    void scansLinksAndSkipsHidden()
    {
        for (const QString& file :
             _fixture->plugins("b.dll .hidden.dll .hidden/d.dll sub/c.dll real/r.dll"))
            writeFile(file);
#ifdef Q_OS_WIN
        // On Unix, the names are enough.
        for (const QString& file : _fixture->plugins(".hidden.dll .hidden"))
            QVERIFY(SetFileAttributesW(reinterpret_cast<const wchar_t*>(file.utf16()),
                                       FILE_ATTRIBUTE_HIDDEN));
#endif
        // Links to a parent directory, to one that is scanned later, and to one outside.
        const QString plugins = _fixture->plugin(QString());
        QVERIFY(QFile::link(plugins, plugins + "sub/loop.lnk"_s));
        QVERIFY(QFile::link(plugins + "real"_s, plugins + "link.lnk"_s));
        writeFile(_fixture->path("outside/z.dll"_s));
        QVERIFY(QFile::link(_fixture->path("outside"_s), plugins + "zone.lnk"_s));
#ifdef Q_OS_WIN
        // The system loads nothing through a shortcut.
        QStringList expected = _fixture->plugins("b.dll real/r.dll sub/c.dll");
        expected += _fixture->path("outside/z.dll"_s);
#else
        const QStringList expected =
            _fixture->plugins("b.dll link.lnk/r.dll sub/c.dll zone.lnk/z.dll");
#endif
        QCOMPARE(PluginLoader::pluginFiles(), expected);
    }

    void scansOnce()
    {
        writeFile(_fixture->plugin("one.dll"_s));
        const QStringList one = PluginLoader::pluginFiles();
        QCOMPARE(one.size(), 1);
        writeFile(_fixture->plugin("another.dll"_s));
        QCOMPARE(PluginLoader::pluginFiles(), one);
        PluginLoader::loadPlugins(true);
        QCOMPARE(PluginLoader::pluginCount(), 2);

        Core::Settings::instance().setPluginDirPath(_fixture->path("missing"_s));
        QVERIFY(PluginLoader::pluginsPath().isEmpty());
        PluginLoader::loadPlugins(true);
        QCOMPARE(PluginLoader::pluginFiles(), QStringList());
    }

    void checksBoardAndIdentifier()
    {
        const std::tuple<int, int, quint64, const char*> cases[] = {
            {6, 2, 1, "boards id info start"},
            {INT_MIN, -1, 1, "boards id info start"},
            {-1, 0, 1, "boards"},
            {4, 2, 0, "boards"},
            {2, 2, 0, "boards id"},
            {2, 2, 1ULL << 63, "boards id info start"}};
        for (const auto& [boardTypes, board, id, called] : cases) {
            Core::BoardEthDescHandler::instance()->setCurrentBoardEthDescType(board);
            RecordingPlugin plugin("P"_s, id, boardTypes);
            RecordingPlugin::takeCalls();
            QCOMPARE(PluginLoader::loadPlugin(&plugin, true, QString()),
                     QByteArray(called).endsWith("start"));
            QCOMPARE(RecordingPlugin::takeCalls(), calls("P", called));
        }
        QCOMPARE(names(), "P,P,P,"_s);
        QVERIFY(PluginLoader::records().isEmpty());
    }

    void checksOtherObjects()
    {
        QObject bare;
        Undeclared undeclared;
        for (QObject* object :
             {static_cast<QObject*>(nullptr), &bare, static_cast<QObject*>(&undeclared)}) {
            QVERIFY(!PluginLoader::loadPlugin(object, true, QString()));
            PluginLoader::unloadPlugin(object);
        }
        QVERIFY(undeclared.optionalFlag() && undeclared.optionalText().isEmpty());
        QVERIFY(undeclared.isActive() && !undeclared.needSaveDocBeforeStart());

        RecordingPlugin plugin("P"_s, 1, -1);
        Core::Settings::instance().setRunValue("throw"_s, "P stop"_s);
        const ConsoleRecorder log;
        PluginLoader::unloadPlugin(&plugin);
        QCOMPARE(RecordingPlugin::takeCalls(), calls("P", "stop"));
        QVERIFY(log.lines.join().contains("RecordingPlugin: stop() threw"));
        Core::BoardEthDescHandler::destruct();
        QVERIFY(!PluginLoader::loadPlugin(&plugin, true, QString()));
    }

    void loadsAndUnloadsInOrder()
    {
        _fixture->copy("PluginA PluginOfOtherBoard PluginB OtherInterface PluginC "
                       "PluginWithoutIdentifier",
                       "A.dll a1.dll b.dll b1.dll sub/C.dll sub/d.dll");
        const auto loading = [](const char* taken) {
            return calls("PluginA", taken) + calls("PluginOfOtherBoard", "boards destroy") +
                   calls("PluginB PluginC", taken) +
                   calls("PluginWithoutIdentifier", "boards id destroy");
        };
        const QString accepted = "PluginA,PluginB,PluginC,"_s;

        PluginLoader::loadPlugins(true);
        QCOMPARE(RecordingPlugin::takeCalls(), loading("boards id info start"));
        for (const QString& file : _fixture->plugins("b.dll A.dll b1.dll sub/d.dll missing.dll"))
            PluginLoader::unloadPlugin(file);
        QCOMPARE(RecordingPlugin::takeCalls(), QStringList());
        PluginLoader::unloadPlugin(_fixture->plugin("sub/../sub/C.dll"_s));
        QCOMPARE(RecordingPlugin::takeCalls(), calls("PluginC", "stop destroy"));
        PluginLoader::unloadPlugins();
        QCOMPARE(RecordingPlugin::takeCalls(), calls("PluginB PluginA", "stop destroy"));
        QCOMPARE(PluginLoader::pluginCount(), 6);
        QCOMPARE(names(), accepted);
        for (const int index : {-1, 3, 6})
            QCOMPARE(PluginLoader::pluginInfoOf(index).keys(), words("QtVersion"));

        PluginLoader::loadPlugins(false);
        QCOMPARE(RecordingPlugin::takeCalls(), loading("boards id info"));
        PluginLoader::loadPlugins(true);
        QCOMPARE(RecordingPlugin::takeCalls(), loading("boards id info start"));
        QCOMPARE(names(), accepted);
        // While the file of the last plug-in is missing, none can be unloaded. Each is loaded
        // twice, so only the second call unloads it.
        const QString file = _fixture->plugin("sub/C.dll"_s);
        QVERIFY(QFile::rename(file, file + u'~'));
        PluginLoader::unloadPlugins();
        QCOMPARE(RecordingPlugin::takeCalls(), QStringList());
        QVERIFY(QFile::rename(file + u'~', file));
        for (const char* ended : {"stop", "stop destroy"}) {
            PluginLoader::unloadPlugins();
            QCOMPARE(RecordingPlugin::takeCalls(), calls("PluginC PluginB PluginA", ended));
        }
    }

    void files_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QString>("verdict");
        QTest::addColumn<QString>("reason");
        QTest::addColumn<QString>("called");
        QTest::addColumn<QString>("builtFor");
        const QString own = QStringLiteral(OVAPP_VERSION);
        const auto row = [](const char* name, const QByteArray& content, const char* verdict,
                            const QString& reason, const char* called,
                            const char* builtFor = OVAPP_VERSION) {
            QTest::newRow(name) << content << QString::fromLatin1(verdict) << reason
                                << QString::fromLatin1(called) << QString::fromLatin1(builtFor);
        };
        const char* all = "boards id info start stop destroy";
        const QByteArray plugin = PluginFixture::built("PluginB"_s);
        row("accepted", plugin, "accepted", {}, all);
        row("other board", PluginFixture::built("PluginOfOtherBoard"_s), "other-board",
            "supportedBoardTypes() is 0x4, which has no bit in common with the type of the board "
            "in use, 0x2"_s,
            "boards destroy");
        row("no identifier", PluginFixture::built("PluginWithoutIdentifier"_s), "no-identifier",
            "pluginID() is 0; give the plug-in an identifier"_s, "boards id destroy");
        row("other interface", PluginFixture::built("OtherInterface"_s), "no-interface",
            "its root object does not implement \"com.quillmere.beamforge.PluginInterface/1.0\"; "
            "name App::PluginInterface in its Q_INTERFACES"_s,
            "");
        row("no library", "text", "no-plugin", "it is not a library for this system"_s, "", "");

        const std::tuple<const char*, const char*, const char*> functions[] = {
            {"construct", "its constructor", "destroy"},
            {"boards", "supportedBoardTypes()", "boards destroy"},
            {"id", "pluginID()", "boards id destroy"},
            {"info", "pluginInfo()", "boards id info destroy"},
            {"start", "start()", all},
            {"stop!", "stop()", all}};
        for (const auto& [thrown, function, called] : functions) {
            const QString text = QByteArray(thrown).endsWith('!')
                                     ? "of an unknown type"_s
                                     : "no 100% "_s + QLatin1String(thrown);
            row(thrown, plugin, called == all ? "accepted" : "exception",
                QLatin1String(function) + " threw an exception: "_s + text, called);
        }

        const QString version =
            "it is built for ovapp %1, and this program uses ovapp %2"_s.arg("%1"_s, own);
        for (const char* other : {"0.9.9", "2.0.0"})
            row(other, stamped(stamp(other)), "other-version", version.arg(QLatin1String(other)),
                "", other);
        row("newer minor version", stamped(stamp("1.9.0")), "accepted", {}, all, "1.9.0");
        // Wine loads libraries even if imported functions are missing.
        if (!Tools::isWine()) {
            row("missing symbol",
                stamped(stamp("1.9.0")).replace("PluginInfo3set", "PluginInfo3sot"), "no-plugin",
                version.arg("1.9.0"_s) + "; Qt cannot load it: "_s, "", "1.9.0");
        }
        const QByteArray numbers = stamp("").left(6) + "\x86\1\2\3\4\5\6";
        for (const QByteArray& invalid :
             {stamp(OVAPP_VERSION, "other"), stamp("2.0-b"), stamp("x.y.z"), numbers})
            row(invalid.toPercentEncoding().constData(), stamped(invalid), "accepted", {}, all, "");
    }

    void files()
    {
        QFETCH(QByteArray, content);
        QFETCH(QString, verdict);
        QFETCH(QString, reason);
        QFETCH(QString, called);
        const QString file = _fixture->copy("PluginA PluginC", "b.dll c.dll").first();
        writeFile(file, content);
        Core::Settings::instance().setRunValue(
            "throw"_s, "PluginB "_s + QString::fromLatin1(QTest::currentDataTag()));
        const ConsoleRecorder log;
        PluginLoader::loadPlugins(true);
        PluginLoader::unloadPlugins();
        const PluginRecord record = PluginLoader::records().at(0);
        QStringList functions =
            RecordingPlugin::takeCalls().filter(QRegularExpression("^(?!PluginC)"_s));
        functions.replaceInStrings(QRegularExpression("^.* "_s), QString());
        QCOMPARE(functions, words(qPrintable(called)));
        QCOMPARE(record.filePath, file);
        QCOMPARE(record.verdictName(), verdict);
        QVERIFY2(record.reason.startsWith(reason), qPrintable(record.reason));
        QCOMPARE(record.reason.isEmpty(), reason.isEmpty());
        QTEST(record.builtFor, "builtFor");
        if (reason.contains("threw"_s)) {
            QCOMPARE(log.lines, QByteArrayList{"warning: PluginLoader::callPlugin: " +
                                               QString(file + ": "_s + reason).toLocal8Bit()});
        }
        const bool isAccepted = verdict == "accepted"_s;
        QCOMPARE(names(), isAccepted ? "PluginB,PluginC,,"_s : "PluginC,,,"_s);
        QCOMPARE(record.info.get("Name"_s).toString(), isAccepted ? "PluginB"_s : QString());
        if (isAccepted || verdict == "other-board"_s)
            QCOMPARE(record.boardTypes, isAccepted ? 2 : 4);
        QCOMPARE(record.identifier, called.contains("info"_s) ? 2U : 0U);
        QCOMPARE(record.loadTime < 0, verdict == "other-version"_s || content == "text");
        QCOMPARE(record.startTime < 0, !isAccepted);
        QCOMPARE(record.stopTime < 0, !isAccepted);
        QVERIFY(!record.rootObject);
    }

    void steps_data()
    {
        QTest::addColumn<int>("thrown");
        int step = -1;
        for (const char* name : {"none", "Load", "Query", "Start", "Stop", "Unload"})
            QTest::newRow(name) << step++;
    }

    /// The steps of three files; the handler throws before one of the third.
    void steps()
    {
        QFETCH(int, thrown);
        const QStringList stepNames = words("Load Query Start Stop Unload");
        _fixture->copy("PluginA PluginOfOtherBoard PluginC", "a.dll b.dll c.dll");
        QStringList events;
        PluginLoader::setStepHandler([&](const QString& file, Step step) {
            events += RecordingPlugin::takeCalls();
            events += stepNames.at(int(step)) + u' ' + QFileInfo(file).fileName();
            if (int(step) == thrown && file.endsWith("c.dll"_s))
                throw thrown;
        });
        bool isThrown = false;
        try {
            PluginLoader::loadPlugins(true);
            PluginLoader::unloadPlugins();
        } catch (int) {
            isThrown = true;
        }
        QCOMPARE(isThrown, thrown >= 0);
        const PluginRecord record = PluginLoader::records().at(2);
        QCOMPARE(record.verdict,
                 thrown == 0 || thrown == 1 ? Verdict::NoPlugin : Verdict::Accepted);
        QCOMPARE(record.reason.isEmpty(), record.verdict == Verdict::Accepted);
        QCOMPARE(record.builtFor, QStringLiteral(OVAPP_VERSION));
        QCOMPARE(!record.rootObject.isNull(), thrown >= 2);
        QCOMPARE(record.stopTime >= 0, thrown == -1 || thrown == 4);

        // Nothing that is loaded is lost.
        PluginLoader::setStepHandler(nullptr);
        PluginLoader::unloadPlugins();
        events += RecordingPlugin::takeCalls();
        QCOMPARE(events.count("PluginA destroy"_s), 1);
        QCOMPARE(events.count("PluginC destroy"_s), thrown == 0 ? 0 : 1);
        QStringList expected =
            words("Load_a.dll Query_a.dll PluginA_boards PluginA_id PluginA_info Start_a.dll "
                  "PluginA_start Load_b.dll Query_b.dll PluginOfOtherBoard_boards Unload_b.dll "
                  "PluginOfOtherBoard_destroy Load_c.dll Query_c.dll PluginC_boards PluginC_id "
                  "PluginC_info Start_c.dll PluginC_start Stop_c.dll PluginC_stop Unload_c.dll "
                  "PluginC_destroy Stop_a.dll PluginA_stop Unload_a.dll PluginA_destroy");
        expected.replaceInStrings("_"_s, " "_s);
        if (thrown >= 0)
            expected = expected.mid(0, expected.indexOf(stepNames.at(thrown) + " c.dll"_s) + 1);
        QCOMPARE(events.mid(0, expected.size()), expected);
    }

    void singleFiles()
    {
        const QStringList files = _fixture->copy("PluginA PluginB", "a.dll sub/b.dll");
        const QString outside = _fixture->path("outside/c.dll"_s);
        writeFile(outside, PluginFixture::built("PluginC"_s));
        // The last two in another order than that of the list.
        for (const QString& file : {outside, files.at(1), files.at(0)}) {
            const PluginRecord record = PluginLoader::loadFile(file, file == outside);
            QCOMPARE(record.verdict, Verdict::Accepted);
            QCOMPARE(record.filePath, file);
            QVERIFY(record.rootObject);
        }
        QCOMPARE(RecordingPlugin::takeCalls(), calls("PluginC", "boards id info start") +
                                                   calls("PluginB PluginA", "boards id info"));
        const QStringList loaded{outside, files.at(1), files.at(0)};
        QCOMPARE(PluginLoader::pluginFiles(), loaded);

        const QString again = _fixture->path("outside/../outside/c.dll"_s);
        for (const QString& file :
             {again, QString(), _fixture->path("missing"_s), _fixture->path("outside"_s)}) {
            const PluginRecord record = PluginLoader::loadFile(file, true);
            QCOMPARE(record.verdict, file == again ? Verdict::LeftOut : Verdict::NoPlugin);
            QVERIFY(!record.reason.isEmpty());
        }
        QCOMPARE(PluginLoader::pluginFiles(), loaded);
        QCOMPARE(names(), "PluginC,PluginB,PluginA,"_s);
        PluginLoader::unloadPlugins();
        QCOMPARE(RecordingPlugin::takeCalls(), calls("PluginA PluginB PluginC", "stop destroy"));

        // There is one record for each path.
        QCOMPARE(PluginLoader::loadFile(again, true).verdict, Verdict::Accepted);
        QCOMPARE(PluginLoader::records().size(), 6);
        QCOMPARE(PluginLoader::records().last().filePath, outside);
    }

    void leftOutFiles()
    {
        const QStringList files = _fixture->copy("PluginA PluginB PluginC", "a.dll b.dll c.dll");
        QStringList filtered;
        PluginLoader::setFileFilter([&](const QString& file) {
            filtered += file;
            return file == files.at(1) ? "the user has disabled it"_s : QString();
        });
        PluginLoader::loadPlugins(true);
        QCOMPARE(filtered, files);
        PluginRecord record = PluginLoader::records().at(1);
        QCOMPARE(record.verdictName(), "left-out"_s);
        QCOMPARE(record.reason, "the user has disabled it"_s);
        QVERIFY(record.loadTime < 0);
        QCOMPARE(RecordingPlugin::takeCalls(), calls("PluginA PluginC", "boards id info start"));
        QCOMPARE(PluginLoader::pluginCount(), 3);

        // Loaded later, after a file that follows it in the list.
        PluginLoader::setFileFilter(nullptr);
        QCOMPARE(PluginLoader::loadFile(files.at(1), true).verdict, Verdict::Accepted);
        QCOMPARE(PluginLoader::records().size(), 3);
        RecordingPlugin::takeCalls();
        PluginLoader::unloadPlugins();
        QCOMPARE(RecordingPlugin::takeCalls(), calls("PluginB PluginC PluginA", "stop destroy"));

        PluginLoader::setFileFilter([](const QString& file) -> QString {
            if (file.endsWith("b.dll"_s))
                throw 1;
            return file.endsWith("c.dll"_s) ? "never reached"_s : QString();
        });
        QVERIFY_EXCEPTION_THROWN(PluginLoader::loadPlugins(true), int);
        QCOMPARE(RecordingPlugin::takeCalls(), calls("PluginA", "boards id info start"));
        PluginLoader::unloadPlugins();
        QCOMPARE(RecordingPlugin::takeCalls(), calls("PluginA", "stop destroy"));
    }

    void sharedFiles()
    {
        const QString file = _fixture->copy("PluginA", "a.dll").first();
        QPluginLoader foreign(file);
#ifdef Q_OS_UNIX
        // A link is a file of its own, with the same root object.
        QVERIFY(QFile::link(file, _fixture->plugin("link.dll"_s)));
#endif
        PluginLoader::loadPlugins(false);
        const QPointer<QObject> object = PluginLoader::records().at(0).rootObject;
        QVERIFY(object && object == PluginLoader::records().last().rootObject);
        // The plug-in of a missing file stays loaded, through the link too.
        QVERIFY(QFile::rename(file, file + u'~'));
        PluginLoader::unloadPlugins();
        QVERIFY(PluginLoader::records().last().stopTime < 0);
        QVERIFY(QFile::rename(file + u'~', file));
        QVERIFY(foreign.load());
        PluginLoader::unloadPlugins();
        for (const PluginRecord& record : PluginLoader::records())
            QVERIFY(record.stopTime >= 0);
        QVERIFY(foreign.isLoaded() && object);
        QVERIFY(foreign.unload() && !object);
    }

    void loadsOnlyIntactFiles()
    {
        int number = 0;
        const auto nextPath = [&] { return _fixture->plugin("%1.dll"_s.arg(++number)); };
        const auto write = [&](const QByteArray& content) { writeFile(nextPath(), content); };
        const QByteArray plugin = PluginFixture::built("PluginA"_s);
        const int size = int(plugin.size());
        for (const int part : {size - 1, size / 2, 4096, 64, 63, 0}) {
            write(plugin.left(part));
            // Without the section table, which is at the end in ELF, or on Windows the imports.
            if (part <= size / 2)
                write(plugin.left(part).leftJustified(size, '\0'));
        }
        write(contentOf(QCoreApplication::applicationFilePath()));
        QVERIFY(QFile::link(_fixture->plugin("."_s), nextPath()));
#ifdef Q_OS_UNIX
        // Opening a FIFO waits for a writer.
        const QString pipe = _fixture->path("pipe"_s);
        QCOMPARE(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
        QVERIFY(QFile::link(pipe, nextPath()));
        QVERIFY(QFile::link("/dev/zero"_s, nextPath()));
#endif
#ifdef Q_OF_ELF
        // Some versions of Qt accept these. Each refers to data beyond the end of the file.
        const auto writeDamaged = [&](const auto& damage) {
            QByteArray content = plugin;
            auto* header = reinterpret_cast<ElfW(Ehdr)*>(content.data());
            damage(*header, *reinterpret_cast<ElfW(Phdr)*>(content.data() + header->e_phoff),
                   *reinterpret_cast<ElfW(Shdr)*>(content.data() + header->e_shoff +
                                                  header->e_shentsize));
            const QString path = nextPath();
            writeFile(path, content);
            QVERIFY(!System::libraryFileError(path).isEmpty());
        };
        writeDamaged([](auto& header, auto&, auto&) { header.e_shstrndx = 0xfff0; });
        writeDamaged([](auto&, auto& segment, auto&) { segment.p_filesz = 1 << 24; });
        writeDamaged([](auto&, auto&, auto& section) { section.sh_offset = ~0ULL << 2; });
        writeDamaged([](auto&, auto&, auto& section) { section.sh_size = ~0ULL; });
        writeDamaged([](auto&, auto&, auto& section) { section.sh_name = 0x7fffffff; });
#endif
        const int damaged = number;
        write(PluginFixture::built("PluginC"_s));
        write(plugin);

        PluginLoader::loadPlugins(true);
        // All except the directory.
        QVERIFY(PluginLoader::pluginCount() > damaged);
        QCOMPARE(RecordingPlugin::takeCalls(), calls("PluginC PluginA", "boards id info start"));
    }

    void keepsIDValue()
    {
        const auto runValue = [] { return Core::Settings::instance().runValue("PluginIDValue"_s); };
        QVERIFY(!PluginLoader::writePluginIDValue(0));
        PluginLoader::initPluginIDValue();
        QVERIFY(PluginLoader::writePluginIDValue(ULLONG_MAX));
        QVERIFY(!PluginLoader::writePluginIDValue(ULLONG_MAX));
        QCOMPARE(runValue(), QVariant(0ULL));
        PluginLoader::initPluginIDValue();
        QCOMPARE(runValue(), QVariant(ULLONG_MAX));
        // After a restart, the value is a string.
        Core::Settings::instance().setValue("Plugin/value"_s, QString::number(ULLONG_MAX));
        QCOMPARE(PluginLoader::readPluginIDValue(), ULLONG_MAX);
        Core::Settings::instance().setValue("Plugin/value"_s, "many"_s);
        QCOMPARE(PluginLoader::readPluginIDValue(), 0ULL);
    }
};

QTEST_GUILESS_MAIN(tst_plugin_loader)
#include "tst_plugin_loader.moc"
