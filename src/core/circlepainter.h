#pragma once

#include "selectioncircle.h"

#include <QColor>
#include <QRect>
#include <QVector>

#include <optional>

class QImage;

/// How a circle is painted.
struct CirclePen {
    QColor color;
    int size = 0;                      ///< width in picture pixels, any int
    Qt::PenStyle square = Qt::DotLine; ///< of the bounding square; Qt::SolidLine while a circle is being made
};

/// Paints the circle into a picture at its own resolution: an ellipse, a centre cross whose arms are twice the
/// pen size, and a bounding square that is one pixel wider and taller than the ellipse's box. A negative
/// radius turns both round; the ellipse's box is then two pixels larger than that of the positive one.
/// Parts far outside the picture cost nothing; no value hangs or overflows.
/// @param picture  Format_ARGB32
void paintCircle(QImage &picture, const SelectionCircle &circle, const CirclePen &circlePen);

/// Rectangles inside a picture, apart from each other, that hold every pixel which paintCircle may change:
/// narrow ones along the lines, so that a little memory is enough to put a large circle in or to take it
/// away. None when a value is too large for that to be known (beyond 32767, or a pen wider than 1024).
std::optional<QVector<QRect>> paintedRectangles(QSize picture, const SelectionCircle &circle, int penSize);
