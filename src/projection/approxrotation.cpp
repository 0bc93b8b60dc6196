#include "approxrotation.h"

#include "arctangent.h"

#include <algorithm>
#include <cmath>

namespace projection
{

namespace
{

constexpr double roundoff = 1.0 / (1 << 24); // of a float, relative: e in docs/projection.md

// Error bounds in units of the roundoff, each named after the step that proves it in docs/projection.md, "The
// approximation and its error".
constexpr double angleErrorOfColumns = 1.7; // "Angles": 5 / pi, and 1.033 for the computed r
constexpr double angleErrorOfRows = 3;      // "Angles": 9 / pi, rounded up
constexpr double arithmeticError = 11;      // "Arithmetic", relative to the value

/// Small maps have the bounds of larger ones: they have few uncertain pixels anyhow, and the bounds then leave
/// room for what the test itself rounds.
int boundedSide(int pixels)
{
    constexpr int leastBoundedSide = 50;
    return std::max(pixels - 1, leastBoundedSide);
}

float distanceFromWhole(float v)
{
    return std::abs(v - std::nearbyint(v));
}

} // namespace

RotatedRow rotatedRow(const SphereRotation &rotation, int y)
{
    const double ca = rotation.cosineOfAngle();
    const double sa = rotation.sineOfAngle();
    const double ct = rotation.row(y).cosine;
    const double st = rotation.row(y).sine;
    return {static_cast<float>(ct), static_cast<float>(ca * ct), static_cast<float>(sa * st),
            static_cast<float>(-sa * ct), static_cast<float>(ca * st)};
}

ApproxScale::ApproxScale(int mapWidth, int mapHeight)
    : width(mapWidth)
    , height(mapHeight)
    , halfColumnsPerHalfAngle(static_cast<float>(2 * (mapWidth - 1) / pi))
    , poleRowsPerHalfAngle(static_cast<float>(2 * (mapHeight - 1) / pi))
    , columnErrorBound(static_cast<float>(angleErrorOfColumns * roundoff * boundedSide(mapWidth)))
    , rowErrorBound(static_cast<float>(angleErrorOfRows * roundoff * boundedSide(mapHeight)))
    , relativeErrorBound(static_cast<float>(arithmeticError * roundoff))
{
}

void approximateSourcesScalar(const ApproxScale &scale, const RotatedRow &row, const float *cosines,
                              const float *sines, int count, ApproxSources &out)
{
    out.uncertainCount = 0;
    for (int i = 0; i < count; ++i) {
        const float x = row.x * cosines[i];
        const float y = row.yBySine * sines[i] + row.y;
        const float z = row.zBySine * sines[i] + row.z;
        const float r = std::sqrt(x * x + y * y);
        const float halfColumns =
            arcTangent(std::min(std::abs(y) / (r + x), 1.0F)) * scale.halfColumnsPerHalfAngle;
        const float poleRows = arcTangent(std::min(r / (1 + std::abs(z)), 1.0F)) * scale.poleRowsPerHalfAngle;
        const bool certain =
            (distanceFromWhole(halfColumns) - scale.relativeErrorBound * halfColumns) * r >
                scale.columnErrorBound &&
            distanceFromWhole(poleRows) - scale.relativeErrorBound * poleRows > scale.rowErrorBound &&
            poleRows >= scale.leastPoleRow;
        if (!certain)
            out.uncertain[out.uncertainCount++] = i;
        const int wholeHalves = certain ? static_cast<int>(halfColumns) : 0;
        const int wholePoleRows = certain ? static_cast<int>(poleRows) : 0;
        const int column = wholeHalves >> 1;
        out.columns[i] = y < 0 ? scale.width - 2 - column : column;
        out.mirroredColumns[i] = (y < 0 ? scale.width - 1 + wholeHalves : scale.width - 2 - wholeHalves) >> 1;
        out.rows[i] = z < 0 ? wholePoleRows : scale.height - 2 - wholePoleRows;
    }
}

#ifndef OVMIC_HIGHWAY
void approximateSources(const ApproxScale &scale, const RotatedRow &row, const float *cosines,
                        const float *sines, int count, ApproxSources &out)
{
    approximateSourcesScalar(scale, row, cosines, sines, count, out);
}
#endif

} // namespace projection
