#pragma once

#include <Qt>

class QColor;
class QImage;
class QPoint;
class QSize;

/// The circle that marks the globe's disc on a photograph, in photograph pixels. Any int is a valid value.
struct SelectionCircle {
    int centerX = 0;
    int centerY = 0;
    int radius = 0;
};

/// The circle for a photograph of which nothing is known: image centre, 0.98 of the smaller half, truncated.
SelectionCircle defaultCircle(QSize photograph);


/// Draws the circle into a picture at its own resolution: an ellipse, a centre cross whose arms are twice the pen
/// size, and a bounding square that is one pixel wider and taller than the ellipse's box.
/// @param picture   Format_ARGB32
/// @param penSize   pen width in picture pixels, any int
/// @param square    Qt::DotLine, or Qt::SolidLine while a new circle is being drawn
/// Parts far outside the picture cost nothing; no value hangs or overflows.
void drawCircle(QImage &picture, const SelectionCircle &circle, const QColor &penColor, int penSize,
                Qt::PenStyle square);

/// The parts of the circle that a mouse can be over; tested in this order.
enum class CircleZone {
    CentreHandle, ///< a disc of 8 pixels around the centre, whatever the radius
    Ring,         ///< the circle's line, 8 pixels either side
    Inside,       ///< in the inner square (radius - 8), away from the handles
    Corner,       ///< a corner of the bounding square
    Outside,      ///< beyond the outer square (radius + 8)
};
CircleZone zoneAt(const SelectionCircle &circle, QPoint position);
