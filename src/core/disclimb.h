#pragma once

#include "disccircle.h"
#include "limbsectors.h"

/// A circle that was laid along a limb, and how well it lies. Lengths are pixels of the source.
struct LimbFit {
    DiscCircle circle;
    double visible = 0.0;    ///< share of the circle's line that lies inside the frame, 0 .. 1
    double backed = 0.0;     ///< share of the whole line where a limb stands within the fit, 0 .. 1
    double oneWay = 0.0;     ///< share of the backed part in which the disc is brighter, or darker, 0.5 .. 1
    double contrast = 0.0;   ///< median difference of disc and sky along the backed part, levels of light
    double skyScatter = 0.0; ///< median distance of the sky beside the backed part from a plane, contrasts
    double clear = 0.0;      ///< share of the visible line outside of which there is that sky, 0 .. 1
    double scatter = 0.0;    ///< median distance of the single limb positions from the circle, radii
    double blur = 0.0;       ///< standard deviation of the blur that fits best
    double error = 0.0;      ///< expected error of centre or radius, whichever is worse, radii
};

/// Moves a circle onto the limb that runs near it. When nothing runs there, or the radius is below 4 pixels, the
/// circle stays and nothing backs it.
/// @param halfWidth  how far the profiles reach to either side, more than 0
LimbFit fitLimb(LimbSource &source, const DiscCircle &circle, double halfWidth, LimbEffort effort);
