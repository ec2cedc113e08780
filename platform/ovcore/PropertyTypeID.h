#pragma once

namespace Core {

/// The identifier of an object property: a number, -1 for none.
class PropertyTypeID
{
public:
    /// A number converts to an identifier, and is had back as it was given.
    /// @{
    // A number stands for a property wherever one is wanted.
    // cppcheck-suppress noExplicitConstructor
    PropertyTypeID(int value) : _value(value) {}
    int value() const { return _value; }
    /// @}

    /// Identifiers are the same where their numbers are.
    /// @{
    bool operator==(const PropertyTypeID& other) const { return _value == other._value; }
    bool operator!=(const PropertyTypeID& other) const { return _value != other._value; }
    /// @}

private:
    int _value;
};

} // namespace Core
