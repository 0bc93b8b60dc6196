#include "largepages.h"

#ifdef __linux__

#include <sys/mman.h>

void preferLargePages(std::uintptr_t begin, std::uintptr_t end)
{
    constexpr std::uintptr_t largePageBytes = std::uintptr_t(2) << 20;
    const std::uintptr_t first = (begin + largePageBytes - 1) / largePageBytes * largePageBytes;
    const std::uintptr_t last = end / largePageBytes * largePageBytes;
    if (first < last)
        madvise(reinterpret_cast<void *>(first), last - first, MADV_HUGEPAGE);
}

#else

void preferLargePages(std::uintptr_t, std::uintptr_t)
{
}

#endif
