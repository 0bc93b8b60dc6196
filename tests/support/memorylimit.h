#pragma once

#include <QFile>

#include <sys/resource.h>
#include <unistd.h>

constexpr rlim_t mebibyte = rlim_t{1024} * 1024;

/// Whether more than the maps may run short of memory: a sanitizer ends the program where itself wants some and gets
/// none.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool addressSpaceCanBeLimited = false;
#else
constexpr bool addressSpaceCanBeLimited = true;
#endif

/// That many bytes, or so many that nothing runs short of them, where a sanitizer could not bear it.
constexpr rlim_t unlessSanitized(rlim_t bytes)
{
    return addressSpaceCanBeLimited ? bytes : mebibyte * mebibyte;
}

/// While it lives, the process gets no more than so many further bytes. For Linux.
class MemoryLimit
{
public:
    explicit MemoryLimit(rlim_t bytes)
    {
        getrlimit(RLIMIT_AS, &m_before);
        QFile statm(QStringLiteral("/proc/self/statm"));
        if (!statm.open(QIODevice::ReadOnly))
            qFatal("The size of the process is unknown");
        const rlim_t pages = statm.readAll().split(' ').first().toULong();
        rlimit limit = m_before;
        limit.rlim_cur = pages * static_cast<rlim_t>(sysconf(_SC_PAGESIZE)) + bytes;
        setrlimit(RLIMIT_AS, &limit);
    }
    ~MemoryLimit() { setrlimit(RLIMIT_AS, &m_before); }
    Q_DISABLE_COPY_MOVE(MemoryLimit)

private:
    rlimit m_before{};
};
