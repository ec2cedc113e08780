#include "PluginFixture.h"

#include <support/Literals.h>

#include <plugins/ExtendPluginInterface.h>

#include <QtTest>

#include <climits>
#include <optional>

using App::PluginLoader;
using Verdict = PluginLoader::Verdict;
Q_DECLARE_METATYPE(Verdict)

/// Has all that a plug-in has, but does not say so.
class Undeclared : public QObject, public App::ExtendPluginInterface
{
    Q_OBJECT

public:
    quint64 pluginID() const override { return 1; }
    int supportedBoardTypes() const override { return 2; }
    void start() override {}
    void stop() override {}
    App::PluginInfo pluginInfo() const override { return App::PluginInfo(); }
};

class tst_plugin_loader : public QObject
{
    Q_OBJECT

    const QString a = "PluginA"_s;
    const QString b = "PluginB"_s;
    const QString c = "PluginC"_s;
    std::optional<PluginFixture> _fixture;

    /// "P x", "P y" for the plug-in P and "x y".
    static QStringList calls(const QString& plugin, const char* names)
    {
        QStringList all;
        for (const QString& name : QString::fromLatin1(names).split(u' '))
            all += plugin + u' ' + name;
        return all;
    }

    static QStringList names()
    {
        QStringList all;
        for (int i = 0; i < 4; ++i)
            all += PluginLoader::pluginInfoOf(i).get("Name"_s).toString();
        return all;
    }

    void writeThree() const
    {
        QVERIFY(_fixture->write("A.dll"_s, PluginFixture::built(a)));
        QVERIFY(_fixture->write("b.dll"_s, PluginFixture::built(b)));
        QVERIFY(_fixture->write("sub/C.dll"_s, PluginFixture::built(c)));
    }

private Q_SLOTS:
    void init() { _fixture.emplace(); }
    void cleanup() { _fixture.reset(); }

    void scansInOrder()
    {
        for (const char* name :
             {"b.dll", "A.dll", "X.DLL", "_.dll", "notes.txt", "dll", "old.dll.bak", "Sub2/y.dLl",
              "sub/c.dll", "sub/de/e/p.dll", "dir.dll/in.dll"})
            QVERIFY(_fixture->write(QString::fromLatin1(name)));
        QStringList expected;
        for (const char* name : {"_.dll", "A.dll", "b.dll", "X.DLL", "dir.dll/in.dll", "sub/c.dll",
                                 "sub/de/e/p.dll", "Sub2/y.dLl"})
            expected += _fixture->plugin(QString::fromLatin1(name));
        QCOMPARE(PluginLoader::pluginFiles(), expected);
    }

    void scansLinksAndSkipsHidden()
    {
#ifdef Q_OS_WIN
        QSKIP("Here a dot hides nothing, and Qt makes shortcuts instead of links");
#endif
        for (const char* name :
             {"b.dll", ".hidden.dll", ".hidden/d.dll", "sub/c.dll", "real/r.dll"})
            QVERIFY(_fixture->write(QString::fromLatin1(name)));
        // Links to a directory above, to one that the scan would come to later, and to one outside.
        const QString plugins = _fixture->plugin(QString());
        QVERIFY(QFile::link(plugins, plugins + "sub/loop"_s));
        QVERIFY(QFile::link(plugins + "real"_s, plugins + "link"_s));
        QVERIFY(QDir().mkdir(_fixture->path("outside"_s)));
        QVERIFY(QFile::link(_fixture->path("outside"_s), plugins + "zone"_s));
        QVERIFY(_fixture->write("zone/z.dll"_s));

        QStringList expected;
        for (const char* name : {"b.dll", "link/r.dll", "sub/c.dll", "zone/z.dll"})
            expected += plugins + QString::fromLatin1(name);
        QCOMPARE(PluginLoader::pluginFiles(), expected);
    }

    void scansOnce()
    {
        QCOMPARE(PluginLoader::pluginFiles(), QStringList());
        QVERIFY(_fixture->write("one.dll"_s));
        const QStringList one = PluginLoader::pluginFiles();
        QCOMPARE(one.size(), 1);
        QVERIFY(_fixture->write("another.dll"_s));
        QCOMPARE(PluginLoader::pluginFiles(), one);
        PluginLoader::loadPlugins(true);
        QCOMPARE(PluginLoader::pluginCount(), 2);

        Core::Settings::instance().setPluginDirPath(_fixture->path("missing"_s));
        QVERIFY(PluginLoader::pluginsPath().isEmpty());
        PluginLoader::loadPlugins(true);
        QCOMPARE(PluginLoader::pluginFiles(), QStringList());
    }

    void judges_data()
    {
        QTest::addColumn<int>("boardTypes");
        QTest::addColumn<int>("board");
        QTest::addColumn<quint64>("id");
        QTest::addColumn<Verdict>("verdict");
        QTest::newRow("one of two bits") << 6 << 2 << quint64(1) << Verdict::Accepted;
        QTest::newRow("highest bits") << INT_MIN << -1 << (quint64(1) << 63) << Verdict::Accepted;
        QTest::newRow("other bit") << 4 << 2 << quint64(1) << Verdict::OtherBoard;
        QTest::newRow("no bit") << 0 << -1 << quint64(1) << Verdict::OtherBoard;
        QTest::newRow("no board") << -1 << 0 << quint64(1) << Verdict::OtherBoard;
        QTest::newRow("both wrong") << 4 << 2 << quint64(0) << Verdict::OtherBoard;
        QTest::newRow("identifier 0") << 2 << 2 << quint64(0) << Verdict::NoIdentifier;
    }
    void judges()
    {
        QFETCH(int, boardTypes);
        QFETCH(int, board);
        QFETCH(quint64, id);
        QFETCH(Verdict, verdict);
        Core::BoardEthDescHandler::instance()->setCurrentBoardEthDescType(board);
        RecordingPlugin plugin("P"_s, id, boardTypes);

        const char* asked = verdict == Verdict::OtherBoard ? "boards" : "boards id";
        QCOMPARE(PluginLoader::verdictOn(&plugin), verdict);
        QCOMPARE(RecordingPlugin::takeCalls(), calls("P"_s, asked));
        QCOMPARE(names().first(), QString());

        const bool isAccepted = verdict == Verdict::Accepted;
        QCOMPARE(PluginLoader::loadPlugin(&plugin, true, QString()), isAccepted);
        QCOMPARE(RecordingPlugin::takeCalls(),
                 calls("P"_s, isAccepted ? "boards id info start" : asked));
        QCOMPARE(names().first(), QString(isAccepted ? "P"_s : QString()));
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
        QCOMPARE(RecordingPlugin::takeCalls(), calls("P"_s, "stop"));
        Core::BoardEthDescHandler::destruct();
        QCOMPARE(PluginLoader::verdictOn(&plugin), Verdict::OtherBoard);
    }

    void loadsAndUnloadsInOrder()
    {
        const QString board = "PluginOfOtherBoard"_s;
        const QString noIdentifier = "PluginWithoutIdentifier"_s;
        writeThree();
        QVERIFY(_fixture->write("a1.dll"_s, PluginFixture::built(board)));
        QVERIFY(_fixture->write("b1.dll"_s, PluginFixture::built("OtherInterface"_s)));
        QVERIFY(_fixture->write("sub/d.dll"_s, PluginFixture::built(noIdentifier)));

        PluginLoader::loadPlugins(true);
        QCOMPARE(RecordingPlugin::takeCalls(),
                 calls(a, "boards id info start") + calls(board, "boards destroy") +
                     calls(b, "boards id info start") + calls(c, "boards id info start") +
                     calls(noIdentifier, "boards id destroy"));
        for (const char* name : {"b.dll", "A.dll", "b1.dll", "sub/d.dll", "missing.dll"})
            PluginLoader::unloadPlugin(_fixture->plugin(QString::fromLatin1(name)));
        QCOMPARE(RecordingPlugin::takeCalls(), QStringList());
        PluginLoader::unloadPlugin(_fixture->plugin("sub/../sub/C.dll"_s));
        QCOMPARE(RecordingPlugin::takeCalls(), calls(c, "stop destroy"));
        PluginLoader::unloadPlugin(_fixture->plugin("b.dll"_s));
        QCOMPARE(RecordingPlugin::takeCalls(), calls(b, "stop destroy"));
        PluginLoader::unloadPlugins();
        QCOMPARE(RecordingPlugin::takeCalls(), calls(a, "stop destroy"));

        QCOMPARE(PluginLoader::pluginCount(), 6);
        QCOMPARE(names(), QStringList({a, b, c, QString()}));
        for (const int index : {-1, 3, 6})
            QCOMPARE(PluginLoader::pluginInfoOf(index).keys(), QStringList{"QtVersion"_s});
    }

    void loadsTwice()
    {
        writeThree();
        const char* taken = "boards id info";
        PluginLoader::loadPlugins(false);
        QCOMPARE(RecordingPlugin::takeCalls(), calls(a, taken) + calls(b, taken) + calls(c, taken));
        PluginLoader::loadPlugins(true);
        taken = "boards id info start";
        QCOMPARE(RecordingPlugin::takeCalls(), calls(a, taken) + calls(b, taken) + calls(c, taken));
        QCOMPARE(names(), QStringList({a, b, c, QString()}));

        // While the file of the last one is gone, none can be unloaded. Each is loaded twice over,
        // and gone only with the second.
        const QString file = _fixture->plugin("sub/C.dll"_s);
        QVERIFY(QFile::rename(file, file + u'~'));
        PluginLoader::unloadPlugins();
        QCOMPARE(RecordingPlugin::takeCalls(), QStringList());
        QVERIFY(QFile::rename(file + u'~', file));
        for (const char* ended : {"stop", "stop destroy"}) {
            PluginLoader::unloadPlugins();
            QCOMPARE(RecordingPlugin::takeCalls(),
                     calls(c, ended) + calls(b, ended) + calls(a, ended));
        }
    }

    void keepsIDValue()
    {
        const auto runValue = [] { return Core::Settings::instance().runValue("PluginIDValue"_s); };
        QVERIFY(!PluginLoader::writePluginIDValue(0));
        PluginLoader::initPluginIDValue();
        QVERIFY(PluginLoader::writePluginIDValue(ULLONG_MAX));
        QVERIFY(!PluginLoader::writePluginIDValue(ULLONG_MAX));
        QCOMPARE(runValue(), QVariant(0ULL));

        Core::Settings::destruct();
        Core::Settings::instance().setApplicationDirPath(_fixture->path(QString()));
        Core::Settings::instance().init();
        PluginLoader::initPluginIDValue();
        QCOMPARE(runValue(), QVariant(ULLONG_MAX));
        Core::Settings::instance().setValue("Plugin/value"_s, "many"_s);
        QCOMPARE(PluginLoader::readPluginIDValue(), 0ULL);
    }
};

QTEST_GUILESS_MAIN(tst_plugin_loader)
#include "tst_plugin_loader.moc"
