#include "composedmap.h"

#include "tiledremap.h"

#include <algorithm>
#include <cmath>

namespace
{

/// The rows of the work map that hold anything, from the top of the map downwards.
struct PaintedRows {
    PaintedRows(const NearSidedPerspective &perspective, int height) : radii(size_t(height))
    {
        const int half = height / 2;
        const int64_t firstRow = std::max<int64_t>(perspective.firstRow(), half - height);
        last = half - 1 - firstRow;
        first = last + 1;
        for (int64_t k = firstRow; perspective.hasRow(k) && k < half; ++k) {
            const double radius = perspective.radius(k);
            largestRadius = std::isnan(radius) ? HUGE_VAL : std::max(largestRadius, std::abs(radius));
            --first;
            radii[size_t(first)] = radius;
        }
    }

    int64_t count() const { return last + 1 - first; }

    int64_t first;
    int64_t last;
    double largestRadius = 0;  ///< infinite if any is no number
    std::vector<double> radii; ///< of all rows of the map, 0 where none is painted
};

/// Directions of the columns of the work map after its shift to the right.
std::vector<Direction> shiftedDirections(const NearSidedPerspective &perspective, int width, int shift)
{
    std::vector<Direction> directions = perspective.directions(width);
    std::rotate(directions.begin(), directions.end() - shift, directions.end());
    return directions;
}

/// Answers with photograph pixels, straight from the directions and radii of the projection step.
template <bool Clipped>
class DiscSource
{
public:
    DiscSource(const NearSidedPerspective &perspective, const ConstImageView &photograph,
               const PaintedRows &rows, const std::vector<Direction> &directions,
               const SphereRotation &rotation, const MirroredColumns &mirror)
        : m_sample(perspective.parameters(), photograph)
        , m_rows(rows)
        , m_directions(directions)
        , m_rotation(rotation)
        , m_mirror(mirror)
        , m_zLimit(-std::cos(double(rows.last + 1) / (rotation.height() - 1) * pi))
    {
    }

    int firstRow() const { return static_cast<int>(m_rows.first); }

    int32_t index(int column, int row) const
    {
        return m_sample(m_directions[size_t(column)], m_rows.radii[size_t(row)]);
    }

    int32_t exactIndex(MapPosition position) const
    {
        const bool painted = position.column >= 0 && position.column < m_rotation.width() &&
                             position.row >= m_rows.first && position.row <= m_rows.last;
        return painted ? index(position.column, position.row) : GatherBatch::none;
    }

    /// The columns that can reach the visible cap: Z' is monotonic between the longitudes -90 and 90.
    Span pairs(int y) const
    {
        constexpr double slack = 1e-12; // far more than doubles are off, far less than a row
        const double zBySine = -m_rotation.sineOfAngle() * m_rotation.row(y).cosine;
        const double z = m_rotation.cosineOfAngle() * m_rotation.row(y).sine;
        const auto inCap = [&](int pair) {
            return zBySine * m_rotation.column(m_mirror.column(pair)).sine + z < m_zLimit + slack;
        };
        int low = 0;
        int high = m_mirror.count();
        const bool capOnRight = zBySine < 0;
        while (low < high) {
            const int middle = (low + high) / 2;
            if (inCap(middle) == capOnRight)
                high = middle;
            else
                low = middle + 1;
        }
        return capOnRight ? Span{low, m_mirror.count()} : Span{0, low};
    }

private:
    BoundedSampler<Clipped> m_sample;
    const PaintedRows &m_rows;
    const std::vector<Direction> &m_directions;
    const SphereRotation &m_rotation;
    const MirroredColumns &m_mirror;
    double m_zLimit;
};

} // namespace

bool paintComposedMap(const NearSidedPerspective &perspective, const ConstImageView &photograph,
                      const MapRotation &mapRotation, int width, int height, const ImageView &canvas,
                      const std::function<void(int)> &progress, ApproximateSources *approximate)
{
    if (!MirroredColumns::cover(3, width, height))
        return false;
    const PaintedRows rows(perspective, height);
    if (rows.count() == 0)
        return true;
    const std::vector<Direction> directions = shiftedDirections(perspective, width, mapRotation.azimuthShift);
    const Samples samples =
        samplesWithin(perspective.parameters(), photograph, directions, rows.largestRadius);
    if (samples == Samples::Wrapping)
        return false;

    const SphereRotation rotation(3, mapRotation.angleDeg, width, height);
    const MirroredColumns mirror(rotation);
    const auto paint = [&](const auto &kernel) {
        withPixelFinish(photograph, [&](auto finish) {
            TiledRemap remap(rotation, mirror, mapRotation.longitudeShift, kernel, photograph.pixels, finish,
                             canvas, approximate);
            remap.paint([&](int rowsDone) {
                progress(static_cast<int>((rows.count() * rowsDone + height - 1) / height));
            });
        });
    };
    if (samples == Samples::Inside)
        paint(DiscSource<false>(perspective, photograph, rows, directions, rotation, mirror));
    else
        paint(DiscSource<true>(perspective, photograph, rows, directions, rotation, mirror));
    return true;
}
