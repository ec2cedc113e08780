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

int main(int argc, char* argv[])
{
    std::signal(SIGINT, [](int) { isInterrupted = 1; });

    const char* host = argc > 1 ? argv[argc - 1] : "";
    if (std::strcmp(host, "silent") == 0)
        return 0;
    for (int i = 1; i < argc; ++i)
        say(stdout, argv[i]);
    say(stderr, "complaint");

    const bool isEndless = std::strcmp(host, "endless") == 0;
    if (isEndless || std::strcmp(host, "slow") == 0) {
        // Half a minute, so that no test leaves one behind, or half a second.
        for (int i = 0; i < (isEndless ? 3000 : 50) && !isInterrupted; ++i)
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        say(stdout, isEndless ? "summary" : "later");
    }
    return std::strcmp(host, "unanswered") == 0 ? 1 : 0;
}
