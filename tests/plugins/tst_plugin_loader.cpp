#include "PluginFixture.h"

#include <support/Tools.h>

#include <ovcore/BoardEthDescHandler.h>
#include <plugins/ExtendPluginInterface.h>

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

/// Hides a file whose name begins with a dot, which is enough on Unix.
static void hide(const QString& path)
{
#ifdef Q_OS_WIN
    const auto name = reinterpret_cast<const wchar_t*>(path.utf16());
    QVERIFY(SetFileAttributesW(name, FILE_ATTRIBUTE_HIDDEN));
#else
    Q_UNUSED(path)
#endif
}

#ifdef Q_OF_ELF
#include <link.h>

/// The same plug-in with another number in what the table of sections says of Qt's metadata.
static QByteArray withMetaData(QByteArray plugin, ElfW(Off) ElfW(Shdr)::*member, ElfW(Off) number)
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

/// The same plug-in with one more segment to load, behind everything else, as tools lay it out that
/// change a library path. The system clears the segment's last page beyond what the file holds.
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
        segment->p_offset = segment->p_vaddr = segment->p_paddr = static_cast<unsigned>(end);
        segment->p_filesz = page + 100;
        segment->p_memsz = page + 200;
        segment->p_align = page;
    }
    return plugin.leftJustified(end + page + 100, '\0');
}
#endif

/// Has all that a plug-in has, but does not say so.
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

    /// The names of the first four plug-ins.
    static QString names()
    {
        QStringList all;
        for (int i = 0; i < 4; ++i)
            all += PluginLoader::pluginInfoOf(i).get("Name"_s).toString();
        return all.join(u',');
    }

private Q_SLOTS:
    void init() { _fixture.emplace(); }
    void cleanup() { _fixture.reset(); }

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
    }

    void scansLinksAndSkipsHidden()
    {
        for (const QString& file :
             _fixture->plugins("b.dll .hidden.dll .hidden/d.dll sub/c.dll real/r.dll"))
            writeFile(file);
        hide(_fixture->plugin(".hidden.dll"_s));
        hide(_fixture->plugin(".hidden"_s));
        // Links to a directory above, to one that the scan would come to later, and to one outside.
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

            const char* asked = verdict == Verdict::OtherBoard ? "boards" : "boards id";
            QCOMPARE(PluginLoader::verdictOn(&plugin), verdict);
            QCOMPARE(RecordingPlugin::takeCalls(), calls("P", asked));
            const bool isAccepted = verdict == Verdict::Accepted;
            QCOMPARE(PluginLoader::loadPlugin(&plugin, true, QString()), isAccepted);
            QCOMPARE(RecordingPlugin::takeCalls(),
                     calls("P", isAccepted ? "boards id info start" : asked));
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
        const QStringList targets = words(
            "PluginA PluginOfOtherBoard PluginB OtherInterface PluginC PluginWithoutIdentifier");
        const QStringList files =
            _fixture->plugins("A.dll a1.dll b.dll b1.dll sub/C.dll sub/d.dll");
        for (int i = 0; i < files.size(); ++i)
            writeFile(files.at(i), PluginFixture::built(targets.at(i)));
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
        // While the file of the last one is gone, none can be unloaded. Each is loaded twice over,
        // and gone only with the second.
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

    void loadsTheSoundOnesAlone()
    {
        // A directory full of files that are no plug-ins, with sound ones among them.
        constexpr int firstNumber = 1000;
        int number = firstNumber;
        const auto nextPath = [&] { return _fixture->plugin("%1.dll"_s.arg(++number)); };
        const auto write = [&](const QByteArray& content) { writeFile(nextPath(), content); };
        const QByteArray plugin = PluginFixture::built("PluginA"_s);
        QVERIFY(plugin.size() > 4096);
        // A file that goes on in zeros lacks its table of sections, which ELF has last, or on
        // Windows what it imports, which stands before the last quarter.
#ifdef Q_OF_ELF
        constexpr int noticedParts = 64;
#else
        constexpr int noticedParts = 48;
#endif
        for (int i = 0; i < 64; ++i) {
            const QByteArray begun = plugin.left(plugin.size() / 64 * i);
            write(plugin.left(i));
            write(begun);
            if (i < noticedParts)
                write(begun.leftJustified(plugin.size(), '\0'));
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
        // A directory named as a plug-in is, that leads back to all the others.
        const QString directory = nextPath();
        QVERIFY(QDir().mkdir(directory));
        QVERIFY(QFile::link(_fixture->path(QString()), directory + "/up"_s));
#ifdef Q_OS_UNIX
        // Whoever opens a pipe waits for a writer.
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
        for (const auto member : {&ElfW(Shdr)::sh_offset, &ElfW(Shdr)::sh_size}) {
            for (const ElfW(Off) value : {0x7fffffffULL, ~0ULL, ~0ULL << 2})
                write(withMetaData(plugin, member, value));
        }
#endif
        write(last);
        write(plugin);

        const QDir openFiles("/proc/self/fd"_s);
        const auto openCount = openFiles.count();
        PluginLoader::loadPlugins(true);
        QCOMPARE(openFiles.count(), openCount);
        // All but the links that lead to no file, and the directory.
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
        Core::Settings::instance().setValue("Plugin/value"_s, "many"_s);
        QCOMPARE(PluginLoader::readPluginIDValue(), 0ULL);
    }
};

QTEST_GUILESS_MAIN(tst_plugin_loader)
#include "tst_plugin_loader.moc"
