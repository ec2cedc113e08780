// Stands in for ping and trace-route. It prints its arguments, one a line, and "complaint" on
// standard error; the last argument, the host, says how it goes on.
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <thread>

namespace {

volatile std::sig_atomic_t isInterrupted = 0;

void say(std::FILE* channel, const char* line)
{
    std::fprintf(channel, "%s\n", line);
    std::fflush(channel);
}

void sleepFor(int milliseconds)
{
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

} // namespace

int main(int argc, char* argv[])
{
    std::signal(SIGINT, [](int) { isInterrupted = 1; });

    const char* host = argc > 1 ? argv[argc - 1] : "";
    if (std::strcmp(host, "silent") == 0)
        return 0;
    for (int i = 1; i < argc; ++i)
        say(stdout, argv[i]);
    say(stderr, "complaint");

    if (std::strcmp(host, "endless") == 0) {
        // Half a minute, so that no test leaves one behind.
        for (int i = 0; i < 3000 && !isInterrupted; ++i)
            sleepFor(10);
        say(stdout, "summary");
    } else if (std::strcmp(host, "slow") == 0) {
        sleepFor(500);
        say(stdout, "later");
    } else if (std::strcmp(host, "unanswered") == 0) {
        return 1;
    }
    return 0;
}
