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
using Verdict = PluginLoader::Verdict;

#ifdef Q_OF_ELF
#include <link.h>

/// Returns the plug-in with another number in the section header of Qt's metadata.
template <typename Number>
static QByteArray withMetaData(QByteArray plugin, Number ElfW(Shdr)::*member, Number number)
{
    const auto* header = reinterpret_cast<const ElfW(Ehdr)*>(plugin.constData());
    auto* sections = reinterpret_cast<ElfW(Shdr)*>(plugin.data() + header->e_shoff);
    const char* names = plugin.constData() + sections[header->e_shstrndx].sh_offset;
    for (auto* section = sections; section != sections + header->e_shnum; ++section) {
        if (QByteArray(names + section->sh_name).contains("metadata"))
            section->*member = number;
    }
    return plugin;
}

/// Returns the plug-in with an additional segment at the end, as tools add one that change a
/// library path. The system clears the last page of the segment after the end of the file. The
/// addresses are above those of the buffer, which is not in the file.
static QByteArray withSegmentAtEnd(QByteArray plugin)
{
    constexpr int page = 0x1000;
    const auto end = (plugin.size() + page - 1) / page * page;
    const auto* header = reinterpret_cast<const ElfW(Ehdr)*>(plugin.data());
    auto* segment = reinterpret_cast<ElfW(Phdr)*>(plugin.data() + header->e_phoff);
    for (const auto* last = segment + header->e_phnum; segment != last; ++segment) {
        if (segment->p_type != PT_GNU_EH_FRAME)
            continue;
        segment->p_type = PT_LOAD;
        segment->p_flags = PF_R | PF_W;
        segment->p_offset = static_cast<unsigned>(end);
        segment->p_vaddr = segment->p_paddr = segment->p_offset + (1 << 24);
        segment->p_filesz = page + 100;
        segment->p_memsz = page + 200;
        segment->p_align = page;
    }
    return plugin.leftJustified(end + page + 100, '\0');
}
#endif

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
        PluginLoader::setProgressHandler(nullptr);
        _fixture.reset();
    }

    void info()
    {
        PluginInfo info;
        QCOMPARE(info.get("QtVersion"_s), QVariant(QString::fromLatin1(qVersion())));
        info.set("name"_s, QVariant());
        QCOMPARE(info.get("name"_s, 5), QVariant());
        QCOMPARE(info.get("Missing"_s, 5), QVariant(5));

        PluginInfo copy(info);
        copy.set("Name"_s, 2);
        copy.set("QtVersion"_s, 3);
        QCOMPARE(copy.get("QtVersion"_s), QVariant(3));
        QCOMPARE(info.keys(), words("QtVersion name"));
        PluginInfo moved(std::move(copy));
        QVERIFY(copy.keys().isEmpty());
        info = std::move(moved);
        QVERIFY(moved.keys().isEmpty());
        QCOMPARE(info.keys(), words("Name QtVersion name"));
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

    void judges()
    {
        const std::tuple<int, int, quint64, Verdict> cases[] = {
            {6, 2, 1, Verdict::Accepted},    {INT_MIN, -1, Q_UINT64_C(1) << 63, Verdict::Accepted},
            {4, 2, 1, Verdict::OtherBoard},  {0, -1, 1, Verdict::OtherBoard},
            {-1, 0, 1, Verdict::OtherBoard}, {4, 2, 0, Verdict::OtherBoard},
            {2, 2, 0, Verdict::NoIdentifier}};
        for (const auto& [boardTypes, board, id, verdict] : cases) {
            RecordingPlugin::takeCalls();
            Core::BoardEthDescHandler::instance()->setCurrentBoardEthDescType(board);
            RecordingPlugin plugin("P"_s, id, boardTypes);

            const char* queries = verdict == Verdict::OtherBoard ? "boards" : "boards id";
            QCOMPARE(PluginLoader::verdictOn(&plugin), verdict);
            QCOMPARE(RecordingPlugin::takeCalls(), calls("P", queries));
            const bool isAccepted = verdict == Verdict::Accepted;
            QCOMPARE(PluginLoader::loadPlugin(&plugin, true, QString()), isAccepted);
            QCOMPARE(RecordingPlugin::takeCalls(),
                     calls("P", isAccepted ? "boards id info start" : queries));
        }
        QCOMPARE(names(), "P,P,,"_s);
    }

    void judgesOtherObjects()
    {
        QObject bare;
        Undeclared undeclared;
        QCOMPARE(PluginLoader::verdictOn(nullptr), Verdict::NoPlugin);
        QCOMPARE(PluginLoader::verdictOn(&bare), Verdict::NoInterface);
        QCOMPARE(PluginLoader::verdictOn(&undeclared), Verdict::NoInterface);
        QVERIFY(!PluginLoader::loadPlugin(nullptr, true, QString()));
        PluginLoader::unloadPlugin(static_cast<QObject*>(nullptr));
        PluginLoader::unloadPlugin(&bare);
        QVERIFY(undeclared.optionalFlag() && undeclared.optionalText().isEmpty());
        QVERIFY(undeclared.isActive() && !undeclared.needSaveDocBeforeStart());

        RecordingPlugin plugin("P"_s, 1, -1);
        PluginLoader::unloadPlugin(&plugin);
        QCOMPARE(RecordingPlugin::takeCalls(), calls("P", "stop"));
        Core::BoardEthDescHandler::destruct();
        QCOMPARE(PluginLoader::verdictOn(&plugin), Verdict::OtherBoard);
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

    void keepsRecords()
    {
        const QString link = _fixture->plugin("sub/link.dll"_s);
        const QString a = _fixture->plugin("a.dll"_s);
        _fixture->copy("PluginA PluginOfOtherBoard OtherInterface PluginWithoutIdentifier",
                       "a.dll b.dll c.dll d.dll");
        writeFile(_fixture->plugin("e.dll"_s), "no library");
        QDir().mkpath(_fixture->plugin("sub"_s));
#ifdef Q_OS_WIN
        QVERIFY(QFile::copy(a, link));
#else
        QVERIFY(QFile::link(a, link));
#endif
        QStringList progress;
        PluginLoader::setProgressHandler([&](const QString& file, int index, int count) {
            progress += QFileInfo(file).fileName();
            progress += "%1/%2"_s.arg(index).arg(count);
            progress += QString::number(RecordingPlugin::takeCalls().size());
        });
        PluginLoader::loadPlugins(true);
        QCOMPARE(progress, words("a.dll 0/6 0 b.dll 1/6 4 c.dll 2/6 2 d.dll 3/6 0 e.dll 4/6 3 "
                                 "link.dll 5/6 0"));

        const QList<App::PluginRecord> records = PluginLoader::records();
        QStringList files;
        QStringList lines;
        for (const App::PluginRecord& record : records) {
            files += record.filePath;
            lines += PluginLoader::verdictName(record.verdict) + u'|' +
                     record.info.get("Name"_s).toString() + u'|' + record.reason;
        }
        QCOMPARE(files, PluginLoader::pluginFiles());
        QCOMPARE(lines,
                 QStringList({"accepted|PluginA|"_s,
                              "other-board||supportedBoardTypes() is 0x4, which has no bit in "
                              "common with the type of the board in use, 0x2"_s,
                              "no-interface||its root object does not implement "
                              "\"com.quillmere.beamforge.PluginInterface/1.0\"; name "
                              "App::PluginInterface in its Q_INTERFACES"_s,
                              "no-identifier||pluginID() is 0; give the plug-in an identifier"_s,
                              "no-plugin||"_s + System::libraryFileError(files.at(4)),
                              "accepted|PluginA|"_s}));

        // The plug-in of a missing file stays loaded, through the link too.
        QVERIFY(QFile::rename(a, a + u'~'));
        PluginLoader::unloadPlugins();
        const auto loaded = [&records] {
            QByteArray all;
            for (const App::PluginRecord& record : records)
                all += record.rootObject ? '+' : '-';
            return all;
        };
#ifdef Q_OS_WIN
        QCOMPARE(loaded(), "+-----");
#else
        QCOMPARE(loaded(), "+----+");
#endif
        QVERIFY(QFile::rename(a + u'~', a));
        PluginLoader::unloadPlugins();
        QCOMPARE(loaded(), "------");
        QCOMPARE(PluginLoader::records().size(), 6);
    }

    void keepsReferences()
    {
        const QString file = _fixture->copy("PluginA", "a.dll").first();
        PluginLoader::loadPlugins(false);
        QPluginLoader loader;
        const QPointer<QObject> object = PluginLoader::rootObjectOf(file, loader);
        QVERIFY(object && object == PluginLoader::records().at(0).rootObject);
        PluginLoader::unloadPlugins();
        QVERIFY(loader.isLoaded() && object);
        QVERIFY(loader.unload() && !object);
    }

    void containsExceptions_data()
    {
        QTest::addColumn<QString>("function");
        QTest::addColumn<bool>("isAccepted");
        QTest::addColumn<QString>("called");
        QTest::newRow("construct") << "its constructor"_s << false << "destroy"_s;
        QTest::newRow("boards") << "supportedBoardTypes()"_s << false << "boards destroy"_s;
        QTest::newRow("id") << "pluginID()"_s << false << "boards id destroy"_s;
        QTest::newRow("info") << "pluginInfo()"_s << false << "boards id info destroy"_s;
        QTest::newRow("start") << "start()"_s << true << "boards id info start"_s;
        QTest::newRow("stop") << "stop()"_s << true << "boards id info start"_s;
    }

    void containsExceptions()
    {
        QFETCH(QString, function);
        QFETCH(bool, isAccepted);
        QFETCH(QString, called);
        const QString moment = QString::fromLatin1(QTest::currentDataTag());
        const Verdict verdict = isAccepted ? Verdict::Accepted : Verdict::Exception;
        const QStringList files = _fixture->copy("PluginA PluginB PluginC", "a.dll b.dll c.dll");
        const QString failure = function + " threw an exception: "_s;

        // Both kinds of exceptions, each twice, and then none.
        for (const char* suffix : {"", "", "!", "!", "-"}) {
            const bool throws = *suffix != '-';
            const bool isRefused = throws && !isAccepted;
            const QString sentence =
                failure + (*suffix ? "of an unknown type"_s : "no 100% "_s + moment);
            const auto throwFrom = [&](const char* plugin) {
                Core::Settings::instance().setRunValue(
                    "throw"_s, QLatin1String(plugin) + u' ' + moment + QLatin1String(suffix));
            };
            const auto warnings = [&](const QString& name) {
                return QByteArrayList{"warning: PluginLoader::callPlugin: " +
                                      QString(name + ": "_s + sentence).toLocal8Bit()};
            };

            throwFrom("PluginB");
            RecordingPlugin::takeCalls();
            ConsoleRecorder log;
            PluginLoader::loadPlugins(true);
            const char* all = "boards id info start";
            QCOMPARE(RecordingPlugin::takeCalls(),
                     calls("PluginA", all) + calls("PluginB", throws ? qPrintable(called) : all) +
                         calls("PluginC", all));
            const App::PluginRecord record = PluginLoader::records().at(1);
            QCOMPARE(record.verdict, throws ? verdict : Verdict::Accepted);
            QCOMPARE(record.reason, throws && moment != "stop"_s ? sentence : QString());
            QCOMPARE(record.rootObject.isNull(), isRefused);
            QCOMPARE(names(), isRefused ? "PluginA,PluginC,,"_s : "PluginA,PluginB,PluginC,"_s);
            PluginLoader::unloadPlugins();
            QCOMPARE(
                RecordingPlugin::takeCalls(),
                calls(isRefused ? "PluginC PluginA" : "PluginC PluginB PluginA", "stop destroy"));
            QCOMPARE(log.lines, throws ? warnings(files.at(1)) : QByteArrayList());

            // An object without a file, which is never constructed here.
            throwFrom("P");
            RecordingPlugin plugin("P"_s, 1, -1);
            log.lines.clear();
            QCOMPARE(PluginLoader::verdictOn(&plugin),
                     throws && (moment == "boards"_s || moment == "id"_s) ? Verdict::Exception
                                                                          : Verdict::Accepted);
            log.lines.clear();
            QCOMPARE(PluginLoader::loadPlugin(&plugin, true, QString()),
                     !throws || isAccepted || moment == "construct"_s);
            PluginLoader::unloadPlugin(&plugin);
            QCOMPARE(log.lines, throws && moment != "construct"_s ? warnings("RecordingPlugin"_s)
                                                                  : QByteArrayList());
        }
    }

    void loadsOnlyIntactFiles()
    {
        // A directory of files that are not plug-ins, with three intact ones among them.
        constexpr int firstNumber = 1000;
        int number = firstNumber;
        const auto nextPath = [&] { return _fixture->plugin("%1.dll"_s.arg(++number)); };
        const auto write = [&](const QByteArray& content) { writeFile(nextPath(), content); };
        const QByteArray plugin = PluginFixture::built("PluginA"_s);
        QVERIFY(plugin.size() > 4096);
        // A file that is continued by zeros lacks its section table, which is at the end in ELF, or
        // on Windows its imports, which are before the last quarter.
#ifdef Q_OF_ELF
        constexpr int detectedParts = 64;
#else
        constexpr int detectedParts = 48;
#endif
        for (int i = 0; i < 64; ++i) {
            const QByteArray beginning = plugin.left(plugin.size() / 64 * i);
            write(plugin.left(i));
            write(beginning);
            if (i < detectedParts)
                write(beginning.leftJustified(plugin.size(), '\0'));
        }
        write(PluginFixture::built("PluginB"_s));
        QRandomGenerator random(7);
        for (int size = 1; size < 100000; size = size * 3 / 2 + 1) {
            QByteArray bytes(size, Qt::Uninitialized);
            for (char& each : bytes)
                each = static_cast<char>(random.bounded(256));
            write(bytes);
            write(plugin.left(64) + bytes);
            write(plugin.left(4096) + bytes + "QTMETADATA !" + bytes);
        }
        write(contentOf(QCoreApplication::applicationFilePath()));
        write("MZ" + QByteArray(200, '\0') + "PE\0\0");
        write(QByteArray(10000, '\0'));
        if (!Tools::isWine())
            write(QByteArray(plugin).replace("PluginInfo3set", "PluginInfo3sot"));
        QVERIFY(QFile::link(_fixture->path("nowhere"_s), nextPath()));
        QVERIFY(QFile::link(_fixture->plugin("."_s), nextPath()));
        const QString self = nextPath();
        QVERIFY(QFile::link(self, self));
        // A directory with the suffix of plug-ins that contains a link to its parent.
        const QString directory = nextPath();
        QVERIFY(QDir().mkdir(directory));
        QVERIFY(QFile::link(_fixture->path(QString()), directory + "/up"_s));
#ifdef Q_OS_UNIX
        // Opening a FIFO waits for a writer.
        const QString pipe = _fixture->path("pipe"_s);
        QCOMPARE(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
        QVERIFY(QFile::link(pipe, nextPath()));
        QVERIFY(QFile::link("/dev/zero"_s, nextPath()));
#endif
        QByteArray last = PluginFixture::built("PluginC"_s);
#ifdef Q_OF_ELF
        last = withSegmentAtEnd(last);
        for (int cut = 1; cut < 5000; cut += 97)
            write(last.chopped(cut));
        // Some versions of Qt accept these.
        const auto writeDamaged = [&](const QByteArray& content) {
            const QString path = nextPath();
            writeFile(path, content);
            QVERIFY(!System::libraryFileError(path).isEmpty());
        };
        for (const auto member : {&ElfW(Shdr)::sh_offset, &ElfW(Shdr)::sh_size}) {
            for (const ElfW(Off) value : {0x7fffffffULL, ~0ULL, ~0ULL << 2})
                writeDamaged(withMetaData(plugin, member, value));
        }
        writeDamaged(withMetaData(plugin, &ElfW(Shdr)::sh_name, ElfW(Word)(0x7fffffff)));
        QByteArray withoutNames = plugin;
        reinterpret_cast<ElfW(Ehdr)*>(withoutNames.data())->e_shstrndx = 0xfff0;
        writeDamaged(withoutNames);
#endif
        write(last);
        write(plugin);

        // A QDir caches its entries. Wine lists the files of another process.
        const auto countOpenFiles = [] {
            return Tools::isWine() ? 0 : int(QDir("/proc/self/fd"_s).count());
        };
        const int openCount = countOpenFiles();
        PluginLoader::loadPlugins(true);
        QCOMPARE(countOpenFiles(), openCount);
        // All except the broken links and the directory.
        QVERIFY(PluginLoader::pluginCount() >= number - firstNumber - 6);
        QCOMPARE(RecordingPlugin::takeCalls(),
                 calls("PluginB PluginC PluginA", "boards id info start"));
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
