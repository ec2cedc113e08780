#pragma once

#include <csignal>

#include <sys/resource.h>

/// Limits the size of all files that this process writes, as a full disk would, until it is
/// destroyed.
class FileSizeLimit
{
public:
    explicit FileSizeLimit(rlim_t size) : _signalHandler(std::signal(SIGXFSZ, SIG_IGN))
    {
        getrlimit(RLIMIT_FSIZE, &_limit);
        const rlimit limit{size, _limit.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    Q_DISABLE_COPY(FileSizeLimit)
    ~FileSizeLimit()
    {
        setrlimit(RLIMIT_FSIZE, &_limit);
        std::signal(SIGXFSZ, _signalHandler);
    }

private:
    void (*const _signalHandler)(int);
    rlimit _limit;
};
