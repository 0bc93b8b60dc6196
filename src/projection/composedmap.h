#pragma once

#include "approxrotation.h"
#include "imageview.h"
#include "nearsidedview.h"

#include <functional>

namespace projection
{

/// How the work map becomes the finished map: moved right by `azimuthShift` columns, rotated, moved right by
/// `longitudeShift` columns. Shifts are cyclic, 0 .. W - 1.
struct MapRotation {
    int azimuthShift = 0;
    int angleDeg = 0; ///< about axis 3
    int longitudeShift = 0;
};

/// Who hears of a map that is being painted; what is empty hears nothing.
struct PaintListener {
    /// Between rows: how many rows of the projection step, of those that it paints, are worked off by now; ends
    /// with all of them.
    std::function<void(int)> rowsDone;
    /// Once before the first pixel: all pixels of the canvas that will be painted.
    std::function<void(const PixelRanges &)> mapBegins;
    /// Before each band of rows: its pixels that will be painted.
    std::function<void(const PixelRanges &)> bandBegins;
};

/// The chain in one pass: for each pixel of the finished map the pixel of the photograph, with no map in
/// between.
/// @param canvas  the finished map, W x H pixels, transparent black
/// @return false, and nothing is painted, for what this way does not cover: odd widths, sides of more than
///         longestAngleTable pixels, samples without bounds. The operations one after the other do it then.
bool paintComposedMap(const NearSidedPerspective &perspective, const ConstImageView &photograph,
                      const MapRotation &mapRotation, const ImageView &canvas, const PaintListener &listener,
                      ApproximateSources approximate = approximateSources);

} // namespace projection
