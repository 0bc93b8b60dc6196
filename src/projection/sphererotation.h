#pragma once

#include "angles.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace projection
{

/// A pixel of a map by column and row. May lie outside the map.
struct MapPosition {
    int column;
    int row;
};

/// Columns by which a map moves to the right when its sphere is rotated about the polar axis.
/// @param angleDeg  360 is taken off (or put on) once when it is larger than 360 (smaller than -360)
/// @return toward zero; -2147483648 where that is no int
int columnShift(double angleDeg, int width);

/// Which pixel of a map the rotated map reads, in the doubles of the formulas: what everything faster is
/// compared with. Formulas: docs/projection.md, "Rotation".
class SphereRotation
{
public:
    /// @param axis      2 about the polar axis, 3 about longitude 0 on the equator, else about longitude 90
    /// @param angleDeg  whole degrees, any int
    /// @param width     of the map, pixels; 0 or less: no column
    /// @param height    of the map, pixels, at least 1
    /// Sides of up to longestAngleTable pixels have their sines and cosines in a table.
    SphereRotation(int axis, int angleDeg, int width, int height);

    /// Where pixel (x, y) of the rotated map reads. A direction without longitude gives a column outside.
    MapPosition source(int x, int y) const;

    int axis() const { return m_axis; }
    int width() const { return m_width; }
    int height() const { return m_height; }
    double sineOfAngle() const { return m_sine; }
    double cosineOfAngle() const { return m_cosine; }
    /// Of a column's longitude, and of a row's latitude.
    CosineSine column(int x) const { return m_columns.empty() ? columnAngle(x) : m_columns[std::size_t(x)]; }
    CosineSine row(int y) const { return m_rows.empty() ? rowAngle(y) : m_rows[std::size_t(y)]; }

private:
    CosineSine columnAngle(int x) const;
    CosineSine rowAngle(int y) const;

    int m_axis;
    int m_width;
    int m_height;
    double m_sine;
    double m_cosine;
    std::vector<CosineSine> m_columns;
    std::vector<CosineSine> m_rows;
};

} // namespace projection
