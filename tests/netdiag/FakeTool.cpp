// A fake ping and traceroute. It prints its arguments, one per line, and "complaint" on standard
// error. The last argument, the host, selects how it continues.
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <thread>

static volatile std::sig_atomic_t isInterrupted = 0;

static void printLine(std::FILE* file, const char* line)
{
    std::fprintf(file, "%s\n", line);
    std::fflush(file);
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
    std::signal(SIGINT, [](int) { isInterrupted = 1; });

    if (is("silent"))
        return 0;
    if (is("late"))
        waitForInterrupt(1s);
    for (int i = 1; i < argc; ++i)
        printLine(stdout, argv[i]);
    printLine(stderr, "complaint");

    if (is("slow")) {
        waitForInterrupt(500ms);
        printLine(stdout, " 1  later");
    }
    if (is("endless") || is("late")) {
        // Not endless, so that no test leaves a process behind.
        waitForInterrupt(30s);
        printLine(stdout, "summary");
    }
    return is("unanswered") || is("late") ? 1 : 0;
}
