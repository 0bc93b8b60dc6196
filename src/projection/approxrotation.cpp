#include "approxrotation.h"

#include "arctangent.h"
#include "nearsidedperspective.h"

#include <algorithm>
#include <cmath>

namespace
{

constexpr double roundoff = 1.0 / (1 << 24); // of a float, relative

/// Small maps have the bounds of larger ones: they have few uncertain pixels anyhow, and the bounds then leave
/// room for what the test itself rounds.
int boundedSide(int pixels)
{
    return std::max(pixels - 1, 50);
}

float fromWhole(float v)
{
    return std::abs(v - std::nearbyint(v));
}

} // namespace

ApproxScale::ApproxScale(int mapWidth, int mapHeight)
    : width(mapWidth)
    , height(mapHeight)
    , halfColumnsPerHalfAngle(static_cast<float>(2 * (mapWidth - 1) / pi))
    , rowsPerHalfAngle(static_cast<float>(2 * (mapHeight - 1) / pi))
    , columnErrorBound(static_cast<float>(1.7 * roundoff * boundedSide(mapWidth)))
    , rowErrorBound(static_cast<float>(3 * roundoff * boundedSide(mapHeight)))
    , relativeErrorBound(static_cast<float>(11 * roundoff))
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
        const float rows = arcTangent(std::min(r / (1 + std::abs(z)), 1.0F)) * scale.rowsPerHalfAngle;
        const bool certain =
            (fromWhole(halfColumns) - scale.relativeErrorBound * halfColumns) * r > scale.columnErrorBound &&
            fromWhole(rows) - scale.relativeErrorBound * rows > scale.rowErrorBound && rows >= scale.firstRow;
        if (!certain)
            out.uncertain[out.uncertainCount++] = i;
        const int wholeHalves = certain ? static_cast<int>(halfColumns) : 0;
        const int wholeRows = certain ? static_cast<int>(rows) : 0;
        const int column = wholeHalves >> 1;
        out.columns[i] = y < 0 ? scale.width - 2 - column : column;
        out.mirroredColumns[i] = (y < 0 ? scale.width - 1 + wholeHalves : scale.width - 2 - wholeHalves) >> 1;
        out.rows[i] = z < 0 ? wholeRows : scale.height - 2 - wholeRows;
    }
}

#ifndef OVMIC_HIGHWAY
void approximateSources(const ApproxScale &scale, const RotatedRow &row, const float *cosines,
                        const float *sines, int count, ApproxSources &out)
{
    approximateSourcesScalar(scale, row, cosines, sines, count, out);
}
#endif

bool MirroredColumns::cover(int axis, int width, int height)
{
    return axis == 3 && width >= 2 && width <= largestTable && width % 2 == 0 && height >= 2 &&
           height <= largestTable;
}

MirroredColumns::MirroredColumns(const SphereRotation &rotation)
    : m_width(rotation.width()), m_first(-(rotation.width() / 4)), m_count(2 * (rotation.width() / 4) + 1)
{
    const size_t size = size_t(m_count) + ApproxSources::padding;
    m_cosines.resize(size);
    m_sines.resize(size);
    for (int pair = 0; pair < m_count; ++pair) {
        // A cosine at 90 degrees may be a hair below zero.
        const CosineSine lambda = rotation.column(column(pair));
        m_cosines[size_t(pair)] = std::max(static_cast<float>(lambda.cosine), 0.0F);
        m_sines[size_t(pair)] = static_cast<float>(lambda.sine);
    }
}

RotatedRow rotatedRow(const SphereRotation &rotation, int y)
{
    const double ca = rotation.cosineOfAngle();
    const double sa = rotation.sineOfAngle();
    const double ct = rotation.row(y).cosine;
    const double st = rotation.row(y).sine;
    return {static_cast<float>(ct), static_cast<float>(ca * ct), static_cast<float>(sa * st),
            static_cast<float>(-sa * ct), static_cast<float>(ca * st)};
}
