// Stands in for ping and trace-route. It prints its arguments, one a line, and "complaint" on
// standard error; the last argument, the host, says how it goes on.
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <thread>

static volatile std::sig_atomic_t isInterrupted = 0;

static void say(std::FILE* channel, const char* line)
{
    std::fprintf(channel, "%s\n", line);
    std::fflush(channel);
}

static void waitForInterrupt(std::chrono::milliseconds limit)
{
    const auto end = std::chrono::steady_clock::now() + limit;
    while (!isInterrupted && std::chrono::steady_clock::now() < end)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
}

int main(int argc, char* argv[])
{
    using namespace std::chrono_literals;
    const char* host = argc > 1 ? argv[argc - 1] : "";
    const auto is = [host](const char* name) { return std::strcmp(host, name) == 0; };
    if (is("stubborn"))
        std::signal(SIGINT, SIG_IGN);
    else
        std::signal(SIGINT, [](int) { isInterrupted = 1; });

    if (is("silent"))
        return 0;
    if (is("late"))
        waitForInterrupt(1s);
    for (int i = 1; i < argc; ++i)
        say(stdout, argv[i]);
    say(stderr, "complaint");

    if (is("slow")) {
        waitForInterrupt(500ms);
        say(stdout, " 1  later");
    }
    if (is("endless") || is("late") || is("stubborn")) {
        // Not quite, so that no test leaves one behind.
        waitForInterrupt(30s);
        say(stdout, "summary");
    }
    return is("unanswered") ? 1 : 0;
}
