#pragma once

#include "pixels.h"
#include "rotationproposals.h"

/// Paints a turned map: each pixel is copied from where RotationKernel::source() says, or stays as it is
/// where that lies outside.
/// @param map     of the size of the rotation; must not overlap the canvas
/// @param canvas  at least as large
void paintRotatedMap(const RotationKernel &rotation, const MapPixels &map, const Canvas &canvas,
                     ProposeSources *propose = proposeSources);
