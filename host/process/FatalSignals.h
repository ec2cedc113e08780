#pragma once

#include <QString>

namespace Host {

/// A signal that a crash raises, and its name.
struct FatalSignal
{
    int number;
    const char* name;
};

/// All of them that a program can catch; the last element is 0 and null.
extern const FatalSignal fatalSignals[];

/// Describes the exception for which `std::terminate` was called, or the call if there is none, in
/// words that follow "ended by". For terminate handlers.
QString describeCurrentException();

} // namespace Host
