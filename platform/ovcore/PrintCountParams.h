#pragma once

/// Classes that describe the marking process.
namespace Laser {

/// The number of finished prints of a document, and the target number.
class PrintCountParams
{
public:
    /// The number of finished prints; 0 by default.
    /// @{
    int finishedCount() const { return _finishedCount; }
    void setFinishedCount(int count) { _finishedCount = count; }
    /// @}

    /// The target number of prints; 0 by default.
    /// @{
    int targetCount() const { return _targetCount; }
    void setTargetCount(int count) { _targetCount = count; }
    /// @}

private:
    int _finishedCount = 0;
    int _targetCount = 0;
};

} // namespace Laser
