#pragma once

namespace Host {

/// Has the console that this program writes to, if any, show UTF-8 for as long as this lives. The
/// program and those that it starts write it then. Elsewhere than on Windows the terminal decides.
class Utf8Console
{
public:
    Utf8Console();
    Utf8Console(const Utf8Console&) = delete;
    Utf8Console& operator=(const Utf8Console&) = delete;
    /// The console shows what it did before.
    // NOLINTNEXTLINE(performance-trivially-destructible): not on Windows.
    ~Utf8Console();

private:
    [[maybe_unused]] const unsigned _formerCodePage;
};

} // namespace Host
