#pragma once

namespace Host {

/// Sets the encoding of the console to UTF-8 for its lifetime, on Windows. This program and those
/// that it starts write UTF-8.
class Utf8Console
{
public:
    Utf8Console();
    Utf8Console(const Utf8Console&) = delete;
    Utf8Console& operator=(const Utf8Console&) = delete;
    /// Restores the encoding.
    // NOLINTNEXTLINE(performance-trivially-destructible): not on Windows.
    ~Utf8Console();

private:
    [[maybe_unused]] const unsigned _previousCodePage;
};

} // namespace Host
