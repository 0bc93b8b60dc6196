#pragma once

#include "angles.h"

#include <cstdint>
#include <vector>

namespace projection
{

/// What becomes of radii near the edge of the disc; docs/projection.md, "Radius".
enum class Lens {
    Corrected, ///< drawn inwards, as the lens of the camera does that the correction was made for
    None,      ///< as the perspective alone has them
};

/// Where a disc lies in a photograph and how large the map is: everything that the perspective depends on.
/// Lengths are pixels; formulas and letters: docs/projection.md. No value is checked.
struct PerspectiveParameters {
    int centerX = 0;
    int centerY = 0;
    int radius = 0;
    double distance = 100.0; ///< viewpoint to globe centre, globe radii
    double ratioX = 2.0;     ///< map columns of 360 degrees per photograph column
    double ratioY = 2.0;     ///< map rows of 90 degrees per photograph row
    double margin = 0.01;    ///< safety margin at the visible edge, fraction of the rows of 90 degrees
    int photographWidth = 0;
    int photographHeight = 0;
    Lens lens = Lens::Corrected;
};

/// The near-sided perspective: a sphere seen from a finite distance, straight down on its pole. Tells where in
/// the photograph a column and row of the work map lie: per column a direction from the disc centre, per row a
/// radius, both in the doubles of the formulas. Rows are counted upwards from the equator of the map.
class NearSidedPerspective
{
public:
    explicit NearSidedPerspective(const PerspectiveParameters &parameters);

    /// Row at the visible edge of the globe, the first one painted. Any int, if hasRow() at all.
    int64_t edgeRow() const { return m_edgeRow; }
    /// Whether row k lies within the quarter circle; rows run from edgeRow() while this holds.
    bool hasRow(int64_t k) const;
    /// Radius of row k in the photograph, pixels before truncation. May be negative, huge or NaN.
    /// Formula: docs/projection.md, "Radius".
    double radius(int64_t k) const;
    /// Direction from the disc centre of a map's column x, counted from the left.
    CosineSine direction(int x, int mapWidth) const;
    /// Directions of all columns of a map; of none if they are more than longestAngleTable.
    std::vector<CosineSine> directions(int mapWidth) const;

    const PerspectiveParameters &parameters() const { return m_parameters; }

private:
    PerspectiveParameters m_parameters;
    double m_tangentToPixels = 0.0;
    int64_t m_edgeRow = 0;
};

} // namespace projection
