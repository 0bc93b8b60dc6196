#pragma once

#include "selectioncircle.h"

#include <optional>

class QImage;

/// The disc of a globe on a photograph.
struct FoundDisc {
    double centerX;    ///< photograph pixels; pixel (0, 0) covers 0 to 1. May lie outside the photograph
    double centerY;    ///< the same
    double radius;     ///< photograph pixels, more than 0
    double confidence; ///< 0 .. 1: of the answers with at least c, at least the share c has a centre and a
                       ///< radius within 1 % of the radius. Measured in docs/disc.md
};

/// Finds the one large disc on a photograph: whole or cut by the frame, full or down to half lit, before a
/// dark, grey or sloping sky. Its edge is the lit limb; the terminator is none.
/// @param photograph  any size and format; its alpha darkens, its device pixel ratio means nothing
/// @return nothing where no disc stands out: on pictures of other things, on discs that are much narrower than
///         a tenth of the shorter side, on photographs with a side below 24 pixels, on a null image
/// The same photograph gives the same answer on every machine and in every thread; calls may run side by side.
std::optional<FoundDisc> findDisc(const QImage &photograph);

/// The circle of a disc in whole pixels, as a conversion takes it: its centre is the pixel that holds the disc's,
/// since offsets are truncated toward zero from the middle of that pixel; its radius is rounded.
SelectionCircle selectionCircle(const FoundDisc &disc);
