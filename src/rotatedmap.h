#pragma once

#include "rotationproposals.h"

#include <cstddef>
#include <cstdint>

/// Pixels of a map, row by row.
struct MapPixels {
    const uint32_t *pixels = nullptr;
    std::ptrdiff_t stride = 0; ///< pixels from one row to the next
};

/// Paints a turned map: each pixel is copied from where RotationKernel::source() says, or stays as it is
/// where that lies outside.
/// @param map     of the size of the rotation; must not overlap the canvas
/// @param canvas  at least as large
/// @param stride  pixels from one canvas row to the next
void paintRotatedMap(const RotationKernel &rotation, const MapPixels &map, uint32_t *canvas,
                     std::ptrdiff_t stride, ProposeSources *propose = proposeSources);
