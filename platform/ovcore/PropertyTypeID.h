#pragma once

namespace Core {

/// The identifier of an object property: a number, or -1 for none.
class PropertyTypeID
{
public:
    /// Converts a number to an identifier and back.
    /// @{
    // cppcheck-suppress noExplicitConstructor; implicit, so that numbers can be passed
    PropertyTypeID(int value) : _value(value) {}
    int value() const { return _value; }
    /// @}

    /// Compares the numbers.
    /// @{
    bool operator==(const PropertyTypeID& other) const { return _value == other._value; }
    bool operator!=(const PropertyTypeID& other) const { return _value != other._value; }
    /// @}

private:
    int _value;
};

} // namespace Core
