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

constexpr std::size_t pageBytes = 4096; // no harm where pages are larger

/// How far behind the edge of its page something lies.
std::size_t offsetInPage(const void *address)
{
    return reinterpret_cast<std::uintptr_t>(address) % pageBytes;
}

/// Gets the pages that hold these bytes, as their first writes would.
void fetchPages(char *begin, const char *end)
{
    if (begin == end)
        return;
    char *const firstPage = begin - offsetInPage(begin);
    const std::size_t pages = (std::size_t(end - firstPage) + pageBytes - 1) / pageBytes;
    madvise(firstPage, pages * pageBytes, MADV_POPULATE_WRITE);
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
        preferLargePages(range.begin, std::size_t(range.end - range.begin) * sizeof(uint32_t));
}

void CanvasPages::bandBegins(const projection::PixelRanges &pixels) const
{
    if (!m_isLarge)
        return;
    // Ranges between which no page is left out go together.
    char *begin = nullptr;
    char *end = nullptr;
    for (const projection::PixelRange &range : pixels) {
        auto *const first = reinterpret_cast<char *>(range.begin);
        if (first - offsetInPage(first) > end) {
            fetchPages(begin, end);
            begin = first;
        }
        end = reinterpret_cast<char *>(range.end);
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
