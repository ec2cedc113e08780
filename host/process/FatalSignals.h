#pragma once

#include <QString>

namespace Host {

/// A signal that is raised by a crash, and its name.
struct FatalSignal
{
    int number;
    const char* name;
};

/// The fatal signals that a program can catch. The last element has the number 0.
extern const FatalSignal fatalSignals[];

/// Describes the exception for which `std::terminate` was called, or the call if there is no
/// exception, as a phrase that follows "ended by". For terminate handlers.
QString describeCurrentException();

} // namespace Host
