#pragma once

#include <csignal>

#include <sys/resource.h>

/// No file grows beyond a size for as long as this lives.
class FullDisk
{
public:
    explicit FullDisk(rlim_t size) : _signalHandler(std::signal(SIGXFSZ, SIG_IGN))
    {
        getrlimit(RLIMIT_FSIZE, &_limit);
        const rlimit full{size, _limit.rlim_max};
        setrlimit(RLIMIT_FSIZE, &full);
    }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;
    ~FullDisk()
    {
        setrlimit(RLIMIT_FSIZE, &_limit);
        std::signal(SIGXFSZ, _signalHandler);
    }

private:
    void (*const _signalHandler)(int);
    rlimit _limit;
};
