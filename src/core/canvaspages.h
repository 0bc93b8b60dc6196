#pragma once

#include "imageview.h"

#include <cstddef>

/// Gets the memory of a large canvas from the system in fewer and larger pieces than its first writes would: large
/// pages where everything on them is painted, and for the rest the pages of a band of rows at once, so that they
/// are still in the cache when the band is painted. What is not painted costs no memory. Only advice: where the
/// system knows none, or refuses, nothing changes.
class CanvasPages
{
public:
    /// @param bytes  of the whole canvas; a small one lies in memory that the process has already
    explicit CanvasPages(std::size_t bytes);

    /// Whether there is anything to gain.
    bool isLarge() const { return m_isLarge; }

    /// Before the first pixel is painted. @param pixels  all that will be
    void mapBegins(const projection::PixelRanges &pixels) const;
    /// Before each band. @param pixels  its pixels
    void bandBegins(const projection::PixelRanges &pixels) const;

private:
    bool m_isLarge;
};
