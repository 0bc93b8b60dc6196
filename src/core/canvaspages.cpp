#include "canvaspages.h"

#include "largepages.h"

#ifdef __linux__
#include <sys/mman.h>

#include <cstdint>

#ifndef MADV_POPULATE_WRITE
#define MADV_POPULATE_WRITE 23 // younger than some libraries; an older system refuses it
#endif
#endif

namespace
{

/// From here on the C library takes a block from the system for its own and gives it back afterwards, whatever
/// the process did before.
constexpr std::size_t leastBytes = std::size_t(32) << 20;

#ifdef __linux__

constexpr std::uintptr_t pageBytes = 4096; // no harm where pages are larger

/// Gets pages as their first writes would. @param begin, end  at their edges
void fetchPages(std::uintptr_t begin, std::uintptr_t end)
{
    if (begin < end)
        madvise(reinterpret_cast<void *>(begin), end - begin, MADV_POPULATE_WRITE);
}

std::uintptr_t addressOf(const uint32_t *pixel)
{
    return reinterpret_cast<std::uintptr_t>(pixel);
}

#endif

} // namespace

CanvasPages::CanvasPages(std::size_t bytes) : m_isLarge(bytes >= leastBytes)
{
}

#ifdef __linux__

void CanvasPages::mapBegins(const projection::PixelRanges &pixels) const
{
    if (!m_isLarge)
        return;
    for (const projection::PixelRange &range : pixels)
        preferLargePages(addressOf(range.begin), addressOf(range.end));
}

void CanvasPages::bandBegins(const projection::PixelRanges &pixels) const
{
    if (!m_isLarge)
        return;
    std::uintptr_t begin = 0;
    std::uintptr_t end = 0;
    for (const projection::PixelRange &range : pixels) {
        const std::uintptr_t firstPage = addressOf(range.begin) / pageBytes * pageBytes;
        if (firstPage > end) {
            fetchPages(begin, end);
            begin = firstPage;
        }
        end = (addressOf(range.end) + pageBytes - 1) / pageBytes * pageBytes;
    }
    fetchPages(begin, end);
}

#else

void CanvasPages::mapBegins(const projection::PixelRanges &) const
{
}

void CanvasPages::bandBegins(const projection::PixelRanges &) const
{
}

#endif
