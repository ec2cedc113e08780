#include <support/Literals.h>

#include <events/PropertyEvent.h>

#include <QtTest>

using App::PropertyEvent;

namespace {

PropertyEvent someEvent()
{
    return PropertyEvent(Core::PropertyTypeID(1), "two"_s, 3, {4, 5, 6}, 7);
}

/// The fields in their order, the IDs as one text.
QVariantList fields(const PropertyEvent& event)
{
    QStringList ids;
    for (const int id : event.objectIDs())
        ids += QString::number(id);
    return {event.propertyTypeID().value(), event.value(), event.objectType(), ids.join(u' '),
            event.referObjectID()};
}

const QVariantList someFields{1, "two"_s, 3, "4 5 6"_s, 7};

} // namespace

class tst_property_event : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void construction()
    {
        QCOMPARE(fields(someEvent()), someFields);
        QCOMPARE(fields(PropertyEvent(Core::PropertyTypeID(1), 2.5, 3, 7)),
                 QVariantList({1, 2.5, 3, QString(), 7}));
        QCOMPARE(fields(PropertyEvent()), QVariantList({-1, QVariant(), -1, QString(), -1}));
    }

    void copies()
    {
        const PropertyEvent first = someEvent();
        PropertyEvent second;
        second = first;
        const PropertyEvent third(second);
        const PropertyEvent& self = second;
        second = self;
        QCOMPARE(fields(second), someFields);
        second = PropertyEvent();
        QCOMPARE(fields(first), someFields);
        QCOMPARE(fields(third), someFields);
    }

    void moves()
    {
        PropertyEvent source = someEvent();
        QCOMPARE(fields(PropertyEvent(std::move(source))), someFields);
        QCOMPARE(fields(source), QVariantList({1, QVariant(), 3, QString(), 7}));

        source = someEvent();
        PropertyEvent target(Core::PropertyTypeID(9), 9, 9, {9, 9}, 9);
        target = std::move(source);
        QCOMPARE(fields(target), someFields);
        // The value is the one thing that the two may have exchanged.
        QCOMPARE(fields(source), QVariantList({1, source.value(), 3, QString(), 7}));
    }
};

QTEST_APPLESS_MAIN(tst_property_event)
#include "tst_property_event.moc"
