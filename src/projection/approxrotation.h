#pragma once

#include "sphererotation.h"

#include <cstddef>
#include <cstdint>
#include <vector>

/// One row of a rotated map, in floats: the direction of a column with cosine c and sine s is
/// (x * c, yBySine * s + y, zBySine * s + z) in the map that is read.
struct RotatedRow {
    float x;
    float yBySine;
    float y;
    float zBySine;
    float z;
};

/// What turns angles into columns and rows, and how near to a whole number an approximation may come.
/// The bounds and their proof: docs/projection.md, "The approximation and its error".
struct ApproxScale {
    ApproxScale(int width, int height);

    int32_t width;
    int32_t height;
    float halfColumnsPerHalfAngle; ///< half columns per radian of half the longitude
    float rowsPerHalfAngle;        ///< rows per radian of half the colatitude
    float columnErrorBound;        ///< of half columns, times the distance from the axis
    float rowErrorBound;           ///< of rows
    float relativeErrorBound;      ///< of both, as a part of the value
    float firstRow = 0;            ///< rows above it are always uncertain, whole
};

/// Approximate positions for neighbouring columns, and for the columns that mirror them at longitude 90.
struct ApproxSources {
    static constexpr int capacity = 512;
    /// Of the inputs and of every list: a vector may reach this far beyond the last pair.
    static constexpr int padding = 64;

    alignas(64) int32_t columns[capacity + padding];
    alignas(64) int32_t mirroredColumns[capacity + padding];
    alignas(64) int32_t rows[capacity + padding]; ///< of both
    int32_t uncertain[capacity]; ///< pairs where exact arithmetic must decide, for both columns
    int uncertainCount = 0;
};

/// Approximates positions. Everything not listed as uncertain equals SphereRotation::source(); uncertain pairs
/// hold a position inside the map.
/// @param cosines  of the longitudes -90 .. 90, not negative, readable for `padding` more
/// @param sines    likewise
/// @param count    1 .. ApproxSources::capacity
using ApproximateSources = void(const ApproxScale &scale, const RotatedRow &row, const float *cosines,
                                const float *sines, int count, ApproxSources &out);
/// With the best vector instructions of this machine, if the build has them.
ApproximateSources approximateSources;
/// One column after the other, in scalar C++.
ApproximateSources approximateSourcesScalar;

/// The columns of a rotated map in the order of the kernels: x and its mirror W/2 - x share Y and Z, only X
/// changes its sign, so that one approximation serves both.
class MirroredColumns
{
public:
    /// Whether the kernels cover a rotation: about axis 3, even width, 2 .. 32767 pixels a side.
    static bool cover(int axis, int width, int height);

    explicit MirroredColumns(const SphereRotation &rotation);

    /// Number of column pairs; their longitudes rise from about -90 to 90 degrees.
    int count() const { return m_count; }
    /// The two map columns of a pair; 0 .. W - 1.
    int column(int pair) const { return wrapped(m_first + pair); }
    int mirroredColumn(int pair) const { return wrapped(m_width / 2 - m_first - pair); }
    const float *cosines() const { return m_cosines.data(); }
    const float *sines() const { return m_sines.data(); }

private:
    int wrapped(int x) const { return x < 0 ? x + m_width : x >= m_width ? x - m_width : x; }

    int m_width;
    int m_first; ///< column of the first pair; negative: counted from the right
    int m_count;
    std::vector<float> m_cosines;
    std::vector<float> m_sines;
};

RotatedRow rotatedRow(const SphereRotation &rotation, int y);
