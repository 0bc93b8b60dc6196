#pragma once

#include <QPoint>
#include <QRect>
#include <QVector>
#include <Qt>

#include <optional>

class QColor;
class QImage;

/// The circle that marks the globe's disc on a photograph, in photograph pixels. Any int is a valid value:
/// nothing is clamped, and arithmetic that leaves the 32 bits wraps.
struct SelectionCircle {
    int centerX = 0;
    int centerY = 0;
    int radius = 0;
};

/// A circle drawn with the mouse that is smaller than this is dropped.
constexpr int smallestDrawnRadius = 5;

/// The circle for a photograph of which nothing is known: image centre, 0.98 of the smaller half, truncated.
SelectionCircle defaultCircle(QSize photograph);

/// The circle of a step of the arrow and size buttons.
SelectionCircle stepped(const SelectionCircle &circle, int dx, int dy, int dRadius);

/// The circle of a drag that moves it from one position to another.
SelectionCircle moved(const SelectionCircle &circle, QPoint from, QPoint to);

/// The circle of a drag that resizes it: its square reaches the position.
SelectionCircle resized(const SelectionCircle &circle, QPoint position);

/// The feedback while a new circle is drawn: the longer of the two distances between the corners of the drag.
/// None while the corners are level with each other in either direction.
std::optional<SelectionCircle> drawnCircle(QPoint centre, QPoint firstCorner, QPoint lastCorner);

/// The parts of the circle that a mouse can be over, tested in this order. Positions on an edge belong to the
/// square; the discs are the ellipse regions of the toolkit.
enum class CircleZone {
    CentreHandle, ///< a disc of 8 pixels around the centre, whatever the radius
    Ring,         ///< the circle's line: in the disc of radius + 8, not in the disc of radius - 8
    Outside,      ///< beyond the outer square (radius + 8)
    Inside,       ///< in the inner square (radius - 8), away from the handles
    Corner,       ///< in the outer square but not in the inner one: a corner of the bounding square
};

/// Takes well under a millisecond for every circle and position.
CircleZone zoneAt(const SelectionCircle &circle, QPoint position);

/// The mouse cursor over a position: four arrows where the circle can be moved, a diagonal arrow where it can
/// be resized, none elsewhere.
std::optional<Qt::CursorShape> cursorAt(const SelectionCircle &circle, QPoint position);

/// Draws the circle into a picture at its own resolution: an ellipse, a centre cross whose arms are twice the
/// pen size, and a bounding square that is one pixel wider and taller than the ellipse's box. A negative
/// radius turns both round; the ellipse's box is then two pixels larger than that of the positive one.
/// @param picture   Format_ARGB32
/// @param penSize   pen width in picture pixels, any int
/// @param square    Qt::DotLine, or Qt::SolidLine while a new circle is being drawn
/// Parts far outside the picture cost nothing; no value hangs or overflows.
void drawCircle(QImage &picture, const SelectionCircle &circle, const QColor &penColor, int penSize,
                Qt::PenStyle square);

/// Rectangles inside a picture, apart from each other, that hold every pixel which drawCircle may change:
/// narrow ones along the lines, so that a little memory is enough to put a large circle in or to take it
/// away. None when a value is too large for that to be known (beyond 32767, or a pen wider than 1024).
std::optional<QVector<QRect>> drawnRectangles(QSize picture, const SelectionCircle &circle, int penSize);
