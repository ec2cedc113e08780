#pragma once

#include <ovapp_export.h>
#include <ovcore/PropertyTypeID.h>

#include <QList>
#include <QVariant>

namespace App {

/// A record of one change of an object property. It is a plain value, no `QEvent`: hand it over as
/// any value is, never through the event queue. What the numbers in it mean is for those to say
/// who make and read it. To change a record, assign another to it. Any thread, as of any value.
class OVAPP_EXPORT PropertyEvent
{
public:
    /// A record of nothing: the property type, the object type and the referenced object ID are
    /// -1, the value is invalid, the list empty.
    PropertyEvent();
    /// A record of what is given; without `objectIDs` the list is empty.
    /// @{
    PropertyEvent(Core::PropertyTypeID propertyTypeID, const QVariant& value, int objectType,
                  const QList<int>& objectIDs, int referObjectID);
    PropertyEvent(Core::PropertyTypeID propertyTypeID, const QVariant& value, int objectType,
                  int referObjectID);
    /// @}
    /// A copy is independent of its source.
    /// @{
    PropertyEvent(const PropertyEvent& other);
    PropertyEvent& operator=(const PropertyEvent& other);
    /// @}
    /// Leaves `other` without object IDs and its value unspecified; the rest of it stays.
    /// @{
    PropertyEvent(PropertyEvent&& other) noexcept;
    PropertyEvent& operator=(PropertyEvent&& other) noexcept;
    /// @}
    ~PropertyEvent();

    /// The property that changed.
    Core::PropertyTypeID propertyTypeID() const;
    /// The value that goes with the change.
    QVariant value() const;
    /// The type of the objects concerned.
    int objectType() const;
    /// The objects concerned.
    QList<int> objectIDs() const;
    /// The object that the change refers to.
    int referObjectID() const;

private:
    Core::PropertyTypeID _propertyTypeID;
    QVariant _value;
    int _objectType;
    QList<int> _objectIDs;
    int _referObjectID;
};

} // namespace App
