#include <events/PropertyEvent.h>

namespace App {

PropertyEvent::PropertyEvent() : PropertyEvent(Core::PropertyTypeID(-1), QVariant(), -1, -1)
{
}

PropertyEvent::PropertyEvent(Core::PropertyTypeID propertyTypeID, const QVariant& value,
                             int objectType, const QList<int>& objectIDs, int referObjectID)
    : _propertyTypeID(propertyTypeID), _value(value), _objectType(objectType),
      _objectIDs(objectIDs), _referObjectID(referObjectID)
{
}

PropertyEvent::PropertyEvent(Core::PropertyTypeID propertyTypeID, const QVariant& value,
                             int objectType, int referObjectID)
    : PropertyEvent(propertyTypeID, value, objectType, QList<int>(), referObjectID)
{
}

Core::PropertyTypeID PropertyEvent::propertyTypeID() const
{
    return _propertyTypeID;
}

QVariant PropertyEvent::value() const
{
    return _value;
}

int PropertyEvent::objectType() const
{
    return _objectType;
}

QList<int> PropertyEvent::objectIDs() const
{
    return _objectIDs;
}

int PropertyEvent::referObjectID() const
{
    return _referObjectID;
}

} // namespace App
