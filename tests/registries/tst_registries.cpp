#include <support/ConsoleRecorder.h>
#include <support/Literals.h>

#include <registries/CommInfo.h>
#include <registries/CommInfoRegistry.h>
#include <registries/ExtendPluginInfo.h>
#include <registries/ExtendPluginRegistry.h>

#include <QtTest>

#include <functional>

using App::CommInfoRegistry;
using App::ExtendPluginRegistry;

namespace {

struct Channel : App::CommInfo
{
    Channel(const char* name, QString& log) : _name(QString::fromUtf8(name)), _log(log) {}

    QString name() const override { return _name; }
    void start() override
    {
        _log += _name;
        if (onStart)
            onStart();
    }
    void stop() override { _log += _name.toLower(); }

    std::function<void()> onStart;
    QString _name;
    QString& _log;
};

struct Description : App::ExtendPluginInfo
{
    QString description() const override { return "engraves"_s; }
    int supportedBoardTypes() const override { return 1; }
};

} // namespace

class tst_registries : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void extensions()
    {
        ExtendPluginRegistry::destruct();
        ExtendPluginRegistry::init();
        ExtendPluginRegistry& registry = ExtendPluginRegistry::instance();
        Description a;
        Description b;
        Description c;
        for (Description* info : {&a, &b, &a, static_cast<Description*>(nullptr), &c})
            registry.registerExtendInfo(info);
        QCOMPARE(registry.count(), 3);

        registry.unregisterExtendInfo(&b);
        registry.unregisterExtendInfo(&b);
        registry.unregisterExtendInfo(nullptr);
        QVERIFY(!registry.contains(&b));
        registry.registerExtendInfo(&b);
        QVERIFY(registry.contains(&b));
        QVERIFY(!registry.contains(nullptr));
        const QList<App::ExtendPluginInfo*> expected{nullptr, &a, &c, &b, nullptr};
        for (int i = 0; i < expected.size(); ++i)
            QCOMPARE(registry.infoAt(i - 1), expected.at(i));

        ExtendPluginRegistry::init();
        QCOMPARE(&ExtendPluginRegistry::instance(), &registry);
        QCOMPARE(registry.count(), 3);
        ExtendPluginRegistry::destruct();
        QVERIFY(a.name().isEmpty() && a.nameForTranslate().isEmpty());
        ExtendPluginRegistry::init();
        QCOMPARE(ExtendPluginRegistry::instance().count(), 0);
        ExtendPluginRegistry::destruct();
    }

    void channels()
    {
        QVERIFY(!CommInfoRegistry::instance());
        CommInfoRegistry::init();
        CommInfoRegistry* const registry = CommInfoRegistry::instance();
        QString log;
        Channel a("A", log);
        Channel b("B", log);
        Channel c("C", log);
        for (Channel* channel : {&a, &b, &a, static_cast<Channel*>(nullptr), &c})
            registry->registerCommInfo(channel);
        registry->start();
        registry->stop();
        QCOMPARE(log, "ABCabc"_s);

        registry->unregisterCommInfo(&a);
        registry->registerCommInfo(&a);
        QVERIFY(registry->contains(&a));
        QVERIFY(!registry->contains(nullptr));
        const QList<App::CommInfo*> expected{nullptr, &b, &c, &a, nullptr};
        QCOMPARE(registry->count(), 3);
        for (int i = 0; i < expected.size(); ++i)
            QCOMPARE(registry->infoAt(i - 1), expected.at(i));

        CommInfoRegistry::init();
        QCOMPARE(CommInfoRegistry::instance(), registry);
        QCOMPARE(registry->count(), 3);
        CommInfoRegistry::destruct();
        QVERIFY(!CommInfoRegistry::instance());
        QCOMPARE(log, "ABCabc"_s);
    }

    void channelLog()
    {
        CommInfoRegistry::init();
        CommInfoRegistry* const registry = CommInfoRegistry::instance();
        ConsoleRecorder console;
        QString log;
        Channel channel("f\xc3\xbcr %s %n", log);
        App::CommInfo plain;
        registry->registerCommInfo(&channel);
        registry->registerCommInfo(&channel);
        registry->registerCommInfo(&plain);
        registry->unregisterCommInfo(&channel);
        registry->unregisterCommInfo(&channel);
        registry->registerCommInfo(nullptr);
        registry->unregisterCommInfo(nullptr);
        registry->start();
        registry->stop();
        CommInfoRegistry::destruct();

        const QByteArray name = channel.name().toLocal8Bit();
        QCOMPARE(console.lines, QByteArrayList({"CommInfoRegistry::registerCommInfo: " + name,
                                                "CommInfoRegistry::registerCommInfo: ",
                                                "CommInfoRegistry::unregisterCommInfo: " + name,
                                                "CommInfoRegistry::unregisterCommInfo: " + name}));
    }

    void channelsThatChangeTheRegistry()
    {
        CommInfoRegistry::init();
        CommInfoRegistry* const registry = CommInfoRegistry::instance();
        QString log;
        Channel a("A", log);
        Channel b("B", log);
        Channel c("C", log);
        Channel d("D", log);
        a.onStart = [&] {
            registry->unregisterCommInfo(&a);
            registry->unregisterCommInfo(&c);
            registry->registerCommInfo(&d);
            registry->stop();
        };
        for (Channel* channel : {&a, &b, &c})
            registry->registerCommInfo(channel);
        registry->start();
        QCOMPARE(log, "AbdBD"_s);
        CommInfoRegistry::destruct();
    }
};

QTEST_APPLESS_MAIN(tst_registries)
#include "tst_registries.moc"
