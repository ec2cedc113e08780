#pragma once

#include <QByteArray>

namespace Host {

/// What is said of code that may end the program. If the program ends while this lives, by a crash,
/// by an exception that nobody catches or by a call of exit, on any thread, the words are written
/// to standard error and the status is the one given here; no core is dumped. One at a time.
class LastWords
{
public:
    LastWords(const QByteArray& words, int status);
    LastWords(const LastWords&) = delete;
    LastWords& operator=(const LastWords&) = delete;
    /// The program ends as before again.
    ~LastWords();

private:
    const QByteArray _words;
};

} // namespace Host
