#pragma once

#include "approxrotation.h"
#include "imageview.h"

namespace projection
{

/// Paints a rotated map: each pixel is copied from where SphereRotation::source() says, or stays as it is
/// where that lies outside.
/// @param map     of the size of the rotation; must not overlap the canvas
/// @param canvas  at least as large
void paintRotatedMap(const SphereRotation &rotation, const ConstImageView &map, const ImageView &canvas,
                     ApproximateSources approximate = approximateSources);

} // namespace projection
