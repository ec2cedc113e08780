#pragma once

#include <ovapp_export.h>
#include <ovcore/PropertyTypeID.h>

#include <QList>
#include <QVariant>

namespace App {

/// A record of one change of an object property.
///
/// It is a plain value and not a `QEvent`: it cannot be posted. The values are application-defined.
/// To change a record, assign another one to it. Copies are independent. A moved-from record has no
/// object IDs and an unspecified value; its other fields are unchanged. Like any value, it may be
/// used on any thread.
class OVAPP_EXPORT PropertyEvent
{
public:
    /// Creates an empty record: the property type, the object type and the referenced object ID are
    /// -1, the value is invalid, and the list is empty.
    PropertyEvent();
    /// Creates a record with these values; without `objectIDs` the list is empty.
    /// @{
    PropertyEvent(Core::PropertyTypeID propertyTypeID, const QVariant& value, int objectType,
                  const QList<int>& objectIDs, int referObjectID);
    PropertyEvent(Core::PropertyTypeID propertyTypeID, const QVariant& value, int objectType,
                  int referObjectID);
    /// @}

    /// Returns the property that changed.
    Core::PropertyTypeID propertyTypeID() const;
    /// Returns the value of the change; its meaning is application-defined.
    QVariant value() const;
    /// Returns the type of the objects concerned.
    int objectType() const;
    /// Returns the IDs of the objects concerned.
    QList<int> objectIDs() const;
    /// Returns the ID of the object that the change refers to.
    int referObjectID() const;

private:
    Core::PropertyTypeID _propertyTypeID;
    QVariant _value;
    int _objectType;
    QList<int> _objectIDs;
    int _referObjectID;
};

} // namespace App
