#pragma once

#include <QPoint>
#include <QSize>
#include <Qt>

#include <optional>

/// The circle that marks the globe's disc on a photograph, in photograph pixels. Any int is a valid value:
/// nothing is clamped, and arithmetic that leaves the 32 bits wraps.
struct SelectionCircle {
    int centerX = 0;
    int centerY = 0;
    int radius = 0;
};

/// A new circle that is smaller than this is dropped.
constexpr int smallestNewRadius = 5;

/// The circle for a photograph of which nothing is known: image centre, 0.98 of the smaller half, truncated.
SelectionCircle defaultCircle(QSize photograph);

/// The circle of a step of the arrow and size buttons.
SelectionCircle stepped(const SelectionCircle &circle, int dx, int dy, int dRadius);

/// The circle of a drag that moves it from one position to another.
SelectionCircle moved(const SelectionCircle &circle, QPoint from, QPoint to);

/// The circle of a drag that resizes it: its square reaches the position.
SelectionCircle resized(const SelectionCircle &circle, QPoint position);

/// The circle of a drag that makes a new one: its radius is the longer of the two distances between the corners
/// of the drag. None while the corners are level with each other in either direction.
std::optional<SelectionCircle> newCircle(QPoint centre, QPoint firstCorner, QPoint lastCorner);

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
