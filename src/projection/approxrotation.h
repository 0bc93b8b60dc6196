#pragma once

#include "mirroredcolumns.h"

#include <cstdint>

namespace projection
{

/// One row of a rotated map, in floats: the direction of a column with cosine c and sine s is
/// (x * c, yBySine * s + y, zBySine * s + z) in the map that is read.
struct RotatedRow {
    float x;
    float yBySine;
    float y;
    float zBySine;
    float z;
};

/// @param y  0 .. H - 1, counted from the top
RotatedRow rotatedRow(const SphereRotation &rotation, int y);

/// What turns half angles into columns and rows of a map, and how near to a whole number an approximation may
/// come. The bounds and their proof: docs/projection.md, "The approximation and its error".
struct ApproxScale {
    /// @param mapWidth, mapHeight  as MirroredColumns::cover() takes them
    ApproxScale(int mapWidth, int mapHeight);

    int32_t width;
    int32_t height;
    float halfColumnsPerHalfAngle; ///< half columns per radian of half the longitude
    float poleRowsPerHalfAngle;    ///< rows, counted from the nearer pole, per radian of half the colatitude
    float columnErrorBound;        ///< of half columns, times the distance from the axis
    float rowErrorBound;           ///< of rows
    float relativeErrorBound;      ///< of both, as a part of the value
    float leastPoleRow = 0;        ///< rows nearer to either pole are uncertain as a whole
};

/// Approximate positions for neighbouring column pairs.
struct ApproxSources {
    static constexpr int capacity = 512;
    /// Of every list: a vector may reach this far beyond the last pair.
    static constexpr int padding = MirroredColumns::padding;

    alignas(64) int32_t columns[capacity + padding];         ///< that the columns of the pairs read
    alignas(64) int32_t mirroredColumns[capacity + padding]; ///< that their mirrors read
    alignas(64) int32_t rows[capacity + padding];            ///< that both read, counted from the top
    int32_t uncertain[capacity]; ///< pairs whose columns exact arithmetic must decide, both of them
    int uncertainCount = 0;
};

/// Approximates positions with the best vector instructions of this machine, if the build has them. Every pair
/// not listed as uncertain equals SphereRotation::source(); uncertain pairs hold a position inside the map.
/// @param cosines  of the longitudes -90 .. 90, not negative, readable for `padding` more
/// @param sines    likewise
/// @param count    1 .. ApproxSources::capacity
void approximateSources(const ApproxScale &scale, const RotatedRow &row, const float *cosines,
                        const float *sines, int count, ApproxSources &out);

/// The same one pair after the other, in scalar C++.
void approximateSourcesScalar(const ApproxScale &scale, const RotatedRow &row, const float *cosines,
                              const float *sines, int count, ApproxSources &out);

/// Either of the two, for callers that choose.
using ApproximateSources = decltype(&approximateSources);

} // namespace projection
