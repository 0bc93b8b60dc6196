#include "largepages.h"

#ifdef __linux__

#include <sys/mman.h>

#include <memory>

void preferLargePages(void *memory, std::size_t bytes)
{
    constexpr std::size_t largePageBytes = std::size_t(2) << 20;
    if (std::align(largePageBytes, largePageBytes, memory, bytes))
        madvise(memory, bytes / largePageBytes * largePageBytes, MADV_HUGEPAGE);
}

#else

void preferLargePages(void *, std::size_t)
{
}

#endif
