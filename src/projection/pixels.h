#pragma once

#include <cstddef>
#include <cstdint>

// Pictures as the kernels see them: pointers and sizes. A stride counts pixels from one row to the next.

/// A photograph, straight ARGB, row by row.
struct Photograph {
    const uint32_t *pixels = nullptr;
    std::ptrdiff_t stride = 0;
    int width = 0;
    int height = 0;
    uint32_t opaque = 0; ///< set in every pixel read: 0xff000000 where the alpha bits mean nothing
};

/// A map, premultiplied ARGB, whose size is known from elsewhere.
struct MapPixels {
    const uint32_t *pixels = nullptr;
    std::ptrdiff_t stride = 0;
};

/// A map to paint on.
struct Canvas {
    uint32_t *pixels = nullptr;
    std::ptrdiff_t stride = 0;
};
