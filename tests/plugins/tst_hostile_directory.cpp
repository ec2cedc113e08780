#include "PluginFixture.h"

#include <support/Literals.h>

#include <QPluginLoader>
#include <QtTest>

#ifdef Q_OF_ELF
#include <cstring>
#include <link.h>
#endif
#ifdef Q_OS_UNIX
#include <sys/stat.h>
#endif

using App::PluginLoader;

#ifdef Q_OF_ELF
/// The same plug-in with one more segment to load, behind everything else, as tools lay it out that
/// change a library path. The system clears the segment's last page beyond what the file holds.
static QByteArray withSegmentAtEnd(QByteArray plugin)
{
    constexpr int page = 0x1000;
    const int end = (plugin.size() + page - 1) / page * page;
    ElfW(Ehdr) header;
    std::memcpy(&header, plugin.constData(), sizeof header);
    for (unsigned i = 0; i < header.e_phnum; ++i) {
        char* at = plugin.data() + header.e_phoff + i * sizeof(ElfW(Phdr));
        ElfW(Phdr) segment;
        std::memcpy(&segment, at, sizeof segment);
        if (segment.p_type != PT_GNU_EH_FRAME)
            continue;
        segment.p_type = PT_LOAD;
        segment.p_flags = PF_R | PF_W;
        segment.p_offset = segment.p_vaddr = segment.p_paddr = static_cast<unsigned>(end);
        segment.p_filesz = page + 100;
        segment.p_memsz = page + 200;
        segment.p_align = page;
        std::memcpy(at, &segment, sizeof segment);
    }
    return plugin.leftJustified(end + page + 100, '\0');
}
#endif

/// A plug-in directory full of files that are none, with sound plug-ins among them.
class tst_hostile_directory : public QObject
{
    Q_OBJECT

    PluginFixture _fixture;
    static constexpr int firstNumber = 1000;
    int _number = firstNumber;
    QStringList _soundFiles;

    QString nextPath() { return _fixture.plugin("%1.dll"_s.arg(++_number)); }
    void write(const QByteArray& content)
    {
        QFile file(nextPath());
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(content), content.size());
    }
    void writeSound(const QByteArray& content)
    {
        write(content);
        _soundFiles += _fixture.plugin("%1.dll"_s.arg(_number));
    }

    void writeRandom(const QByteArray& plugin)
    {
        QRandomGenerator random(7);
        for (int size = 1; size < 100000; size = size * 3 / 2 + 1) {
            QByteArray bytes(size, Qt::Uninitialized);
            for (char& byte : bytes)
                byte = static_cast<char>(random.bounded(256));
            write(bytes);
            write(plugin.left(64) + bytes);
            write(plugin.left(4096) + bytes + "QTMETADATA !" + bytes);
        }
    }

    void makeLinks()
    {
        QVERIFY(QFile::link(_fixture.path("nowhere"_s), nextPath()));
        QVERIFY(QFile::link(_fixture.plugin("."_s), nextPath()));
        const QString self = nextPath();
        QVERIFY(QFile::link(self, self));
        // A directory named as a plug-in is, that leads back to all the others.
        const QString directory = nextPath();
        QVERIFY(QDir().mkdir(directory));
        QVERIFY(QFile::link(_fixture.path(QString()), directory + "/up"_s));
#ifdef Q_OS_UNIX
        // Whoever opens a pipe waits for a writer.
        const QString pipe = _fixture.path("pipe"_s);
        QCOMPARE(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
        QVERIFY(QFile::link(pipe, nextPath()));
        QVERIFY(QFile::link("/dev/zero"_s, nextPath()));
#endif
    }

private Q_SLOTS:
    void loadsTheSoundOnesAlone()
    {
        const QString a = "PluginA"_s;
        const QString b = "PluginB"_s;
        const QString c = "PluginC"_s;
        const QByteArray plugin = PluginFixture::built(a);
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
        writeSound(PluginFixture::built(b));
        writeRandom(plugin);
        QFile program(QCoreApplication::applicationFilePath());
        QVERIFY(program.open(QIODevice::ReadOnly));
        write(program.readAll());
        write("MZ" + QByteArray(200, '\0') + "PE\0\0");
        makeLinks();
        QByteArray last = PluginFixture::built(c);
#ifdef Q_OF_ELF
        last = withSegmentAtEnd(last);
        for (int cut = 1; cut < 5000; cut += 97)
            write(last.chopped(cut));
#endif
        writeSound(last);
        writeSound(plugin);

        PluginLoader::loadPlugins(true);
        const QStringList files = PluginLoader::pluginFiles();
        // All but the links that lead to no file, and the directory.
        QVERIFY(files.size() >= _number - firstNumber - 6);
        QStringList expected;
        for (const QString& name : {b, c, a}) {
            for (const char* call : {" boards", " id", " info", " start"})
                expected += name + QLatin1String(call);
        }
        QCOMPARE(RecordingPlugin::takeCalls(), expected);
        for (const QString& file : files) {
            QPluginLoader loader;
            QCOMPARE(PluginLoader::rootObjectOf(file, loader) != nullptr,
                     _soundFiles.contains(file));
            loader.unload();
        }

        PluginLoader::unloadPlugins();
        expected.clear();
        for (const QString& name : {a, c, b})
            expected += {name + " stop"_s, name + " destroy"_s};
        QCOMPARE(RecordingPlugin::takeCalls(), expected);
    }
};

QTEST_GUILESS_MAIN(tst_hostile_directory)
#include "tst_hostile_directory.moc"
