#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace projection
{

// Images without an image class: pointers and sizes of 32-bit pixels that somebody else owns. A stride counts
// pixels from one row to the next.

/// An image to read from: a photograph in straight ARGB, or a map in premultiplied ARGB.
struct ConstImageView {
    const uint32_t *pixels = nullptr;
    std::ptrdiff_t stride = 0;
    int width = 0;
    int height = 0;
    uint32_t opaqueBits = 0; ///< set in every pixel read: 0xff000000 where the alpha bits mean nothing
};

/// A map to paint on, premultiplied ARGB.
struct ImageView {
    uint32_t *pixels = nullptr;
    std::ptrdiff_t stride = 0;
    int width = 0;
    int height = 0;
};

/// Pixels of an image in a row of it, from `begin` to before `end`, or those of several whole rows.
struct PixelRange {
    uint32_t *begin = nullptr;
    uint32_t *end = nullptr;
};

/// By their addresses, apart from each other.
using PixelRanges = std::vector<PixelRange>;

} // namespace projection
