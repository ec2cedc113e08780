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
    explicit Channel(const char* name) : _name(QString::fromUtf8(name)) {}

    QString name() const override { return _name; }
    void start() override
    {
        log += _name;
        if (onStart)
            onStart();
    }
    void stop() override { log += _name.toLower(); }

    static inline QString log;
    std::function<void()> onStart;
    const QString _name;
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
        Channel channel("f\xc3\xbcr %s %n");
        App::CommInfo plain;
        checkList<CommInfoRegistry, App::CommInfo>(*registry, &CommInfoRegistry::registerCommInfo,
                                                   &CommInfoRegistry::unregisterCommInfo, &channel,
                                                   &plain);
        QCOMPARE(CommInfoRegistry::instance(), registry);
        CommInfoRegistry::destruct();
        QVERIFY(!CommInfoRegistry::instance());
        QVERIFY(Channel::log.isEmpty());

        QCOMPARE(console.lines.join(',').replace("CommInfoRegistry::", ""),
                 "registerCommInfo: %1,registerCommInfo: ,unregisterCommInfo: %1,"
                 "unregisterCommInfo: %1,registerCommInfo: %1"_s.arg(channel.name())
                     .toLocal8Bit());
    }

    void channelsMayChangeTheRegistry()
    {
        CommInfoRegistry::init();
        CommInfoRegistry* const registry = CommInfoRegistry::instance();
        Channel a("A"), b("B"), c("C"), d("D");
        a.onStart = [&] {
            registry->unregisterCommInfo(&a);
            registry->unregisterCommInfo(&c);
            registry->registerCommInfo(&d);
            registry->stop();
        };
        for (Channel* channel : {&a, &b, &c})
            registry->registerCommInfo(channel);
        registry->start();
        QCOMPARE(Channel::log, "AbdBD"_s);
        CommInfoRegistry::destruct();
    }
};

QTEST_APPLESS_MAIN(tst_registries)
#include "tst_registries.moc"
