#include <support/Literals.h>

#include <plugins/PluginInfo.h>

#include <QtTest>

using App::PluginInfo;

class tst_plugin_info : public QObject
{
    Q_OBJECT

    const QString version = "QtVersion"_s;
    const QString upper = "Name"_s;
    const QString lower = "name"_s;

private Q_SLOTS:
    void keepsKeysInOrder()
    {
        PluginInfo info;
        QCOMPARE(info.keys(), QStringList{version});
        QCOMPARE(info.get(version), QVariant(QString::fromLatin1(qVersion())));
        info.set(lower, QVariant());
        info.set(upper, 2);
        info.set(version, 3);
        QCOMPARE(info.keys(), QStringList({upper, version, lower}));
        QCOMPARE(info.get(version, 5), QVariant(3));
        QCOMPARE(info.get(lower, 5), QVariant());
        QCOMPARE(info.get("Missing"_s, 5), QVariant(5));
    }

    void copiesAndMoves()
    {
        PluginInfo source;
        PluginInfo copy(source);
        copy.set(upper, 1);
        source.set(lower, 2);
        QCOMPARE(copy.keys(), QStringList({upper, version}));
        QCOMPARE(source.keys(), QStringList({version, lower}));

        PluginInfo moved(std::move(copy));
        QVERIFY(copy.keys().isEmpty());
        source = std::move(moved);
        QVERIFY(moved.keys().isEmpty());
        QCOMPARE(source.keys(), QStringList({upper, version}));
    }
};

QTEST_GUILESS_MAIN(tst_plugin_info)
#include "tst_plugin_info.moc"
