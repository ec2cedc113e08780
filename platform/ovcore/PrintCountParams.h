#pragma once

/// What has to do with marking itself.
namespace Laser {

/// How many prints of a document are done and how many are wanted.
class PrintCountParams
{
public:
    /// Prints finished so far; 0 in a new record.
    /// @{
    int finishedCount() const { return _finishedCount; }
    void setFinishedCount(int count) { _finishedCount = count; }
    /// @}

    /// Prints wanted; 0 in a new record.
    /// @{
    int targetCount() const { return _targetCount; }
    void setTargetCount(int count) { _targetCount = count; }
    /// @}

private:
    int _finishedCount = 0;
    int _targetCount = 0;
};

} // namespace Laser
