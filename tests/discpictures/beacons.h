#pragma once

#include <QImage>
#include <QPointF>

#include <vector>

/// Bright spots on the ground of a globe, which can be found again on its maps.

/// Paints them onto a disc: one in the middle, four 25 degrees from it.
void paintBeacons(QImage &photograph, double centerX, double centerY, double radius);

/// Where they lie on a map of the whole globe, in pixels from its upper left corner, in the order of painting; not a
/// number where none is near its place. The map has the middle of the disc in its own middle.
std::vector<QPointF> beaconsOn(const QImage &map);
