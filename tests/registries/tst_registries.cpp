#include <support/ConsoleRecorder.h>
#include <support/Extension.h>
#include <support/Literals.h>

#include <registries/CommInfo.h>
#include <registries/CommInfoRegistry.h>
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

/// Checks adding and removing; leaves `b` and `a` in the registry, in this order.
template <typename Registry, typename Info>
void checkList(Registry& registry, void (Registry::*add)(Info*), void (Registry::*remove)(Info*),
               Info* a, Info* b)
{
    for (Info* info : {a, b, a, static_cast<Info*>(nullptr)})
        (registry.*add)(info);
    for (Info* info : {a, a, static_cast<Info*>(nullptr)})
        (registry.*remove)(info);
    QVERIFY(!registry.contains(a));
    (registry.*add)(a);
    QVERIFY(registry.contains(a));
    QVERIFY(!registry.contains(nullptr));

    Registry::init();
    QCOMPARE(registry.count(), 2);
    const QList<Info*> expected{nullptr, b, a, nullptr};
    for (int i = 0; i < expected.size(); ++i)
        QCOMPARE(registry.infoAt(i - 1), expected.at(i));
}

} // namespace

class tst_registries : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void extensionsStayInOrder()
    {
        ExtendPluginRegistry::destruct();
        ExtendPluginRegistry::init();
        ExtendPluginRegistry& registry = ExtendPluginRegistry::instance();
        Extension a;
        Extension b;
        checkList<ExtendPluginRegistry, App::ExtendPluginInfo>(
            registry, &ExtendPluginRegistry::registerExtendInfo,
            &ExtendPluginRegistry::unregisterExtendInfo, &a, &b);
        QCOMPARE(&ExtendPluginRegistry::instance(), &registry);

        ExtendPluginRegistry::destruct();
        QVERIFY(a.name().isEmpty() && a.nameForTranslate().isEmpty());
        ExtendPluginRegistry::init();
        QCOMPARE(ExtendPluginRegistry::instance().count(), 0);
        ExtendPluginRegistry::destruct();
    }

    void channelsStayInOrderAndAreLogged()
    {
        QVERIFY(!CommInfoRegistry::instance());
        CommInfoRegistry::init();
        CommInfoRegistry* const registry = CommInfoRegistry::instance();
        const ConsoleRecorder console;
        QString log;
        Channel channel("f\xc3\xbcr %s %n", log);
        App::CommInfo plain;
        checkList<CommInfoRegistry, App::CommInfo>(*registry, &CommInfoRegistry::registerCommInfo,
                                                   &CommInfoRegistry::unregisterCommInfo, &channel,
                                                   &plain);
        QCOMPARE(CommInfoRegistry::instance(), registry);
        CommInfoRegistry::destruct();
        QVERIFY(!CommInfoRegistry::instance());
        QCOMPARE(log, QString());

        const QByteArray name = channel.name().toLocal8Bit();
        QCOMPARE(console.lines, QByteArrayList({"CommInfoRegistry::registerCommInfo: " + name,
                                                "CommInfoRegistry::registerCommInfo: ",
                                                "CommInfoRegistry::unregisterCommInfo: " + name,
                                                "CommInfoRegistry::unregisterCommInfo: " + name,
                                                "CommInfoRegistry::registerCommInfo: " + name}));
    }

    void channelsMayChangeTheRegistry()
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
