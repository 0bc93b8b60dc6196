#pragma once

#include <cmath>

namespace projection
{

/// The circle constant of every conversion between degrees and radians, and the radians of one degree.
constexpr double pi = 3.141592653589793;
constexpr double radiansPerDegree = pi / 180;

/// The most columns or rows whose angles are kept in a table: no map that people use has more, and a table for
/// one of a thousand million columns and a single row would need more memory than the map.
constexpr int longestAngleTable = 32767;

/// Cosine and sine of one angle: a direction in a plane.
struct CosineSine {
    double cosine;
    double sine;
};

/// @param angleRad  radians; NaN for NaN and infinities
inline CosineSine cosineSine(double angleRad)
{
    return {std::cos(angleRad), std::sin(angleRad)};
}

} // namespace projection
