#pragma once

#include <QString>

namespace Host {

/// A signal that a crash raises, by its name.
struct FatalSignal
{
    int number;
    const char* name;
};

/// All that a program can catch; the last one is 0 and null.
extern const FatalSignal fatalSignals[];

/// The exception that `std::terminate` was called for and its text, or that call itself if there
/// is none: in words that follow "ended by". For a terminate handler.
QString describeCurrentException();

} // namespace Host
