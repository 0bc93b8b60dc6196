#include "canvaspages.h"

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
constexpr std::uintptr_t largePageBytes = std::uintptr_t(2) << 20;

std::uintptr_t roundedDown(std::uintptr_t address, std::uintptr_t unit)
{
    return address / unit * unit;
}

std::uintptr_t roundedUp(std::uintptr_t address, std::uintptr_t unit)
{
    return roundedDown(address + unit - 1, unit);
}

void advise(std::uintptr_t begin, std::uintptr_t end, int advice)
{
    if (begin < end)
        madvise(reinterpret_cast<void *>(begin), end - begin, advice);
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
        advise(roundedUp(addressOf(range.begin), largePageBytes),
               roundedDown(addressOf(range.end), largePageBytes), MADV_HUGEPAGE);
}

void CanvasPages::bandBegins(const projection::PixelRanges &pixels) const
{
    if (!m_isLarge)
        return;
    std::uintptr_t begin = 0;
    std::uintptr_t end = 0;
    for (const projection::PixelRange &range : pixels) {
        const std::uintptr_t firstPage = roundedDown(addressOf(range.begin), pageBytes);
        if (firstPage > end) {
            advise(begin, end, MADV_POPULATE_WRITE);
            begin = firstPage;
        }
        end = roundedUp(addressOf(range.end), pageBytes);
    }
    advise(begin, end, MADV_POPULATE_WRITE);
}

#else

void CanvasPages::mapBegins(const projection::PixelRanges &) const
{
}

void CanvasPages::bandBegins(const projection::PixelRanges &) const
{
}

#endif
