#include "composedmap.h"

#include "discsampler.h"
#include "tiledremap.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace projection
{

namespace
{

/// The rows of the work map that hold anything, counted from the top of the map: `top` to `bottom`, both
/// included.
struct PaintedRows {
    PaintedRows(const NearSidedPerspective &perspective, int height) : radii(size_t(height))
    {
        const int half = height / 2;
        const int64_t edgeRow = std::max<int64_t>(perspective.edgeRow(), half - height);
        bottom = half - 1 - edgeRow;
        top = bottom + 1;
        for (int64_t k = edgeRow; perspective.hasRow(k) && k < half; ++k) {
            const double radius = perspective.radius(k);
            largestRadius = std::isnan(radius) ? HUGE_VAL : std::max(largestRadius, std::abs(radius));
            --top;
            radii[size_t(top)] = radius;
        }
    }

    int64_t count() const { return bottom + 1 - top; }

    int64_t top;
    int64_t bottom;
    double largestRadius = 0;  ///< infinite if any is no number
    std::vector<double> radii; ///< of all rows of the map, 0 where none is painted
};

/// Directions of the columns of the work map after its shift to the right.
std::vector<CosineSine> shiftedDirections(const NearSidedPerspective &perspective, int width, int shift)
{
    std::vector<CosineSine> directions = perspective.directions(width);
    std::rotate(directions.begin(), directions.end() - shift, directions.end());
    return directions;
}

/// Answers with photograph pixels, straight from the directions and radii of the perspective.
template <bool Clipped, typename Finish>
class DiscSource
{
public:
    /// All but the finish outlive this.
    DiscSource(const MirroredColumns &mirror, const PaintedRows &rows,
               const std::vector<CosineSine> &directions, const BoundedSampler<Clipped> &sample,
               const uint32_t *pixels, Finish finish)
        : m_mirror(mirror)
        , m_rows(rows)
        , m_directions(directions)
        , m_sample(sample)
        , m_pixels(pixels)
        , m_finish(finish)
        , m_zLimit(-std::cos(double(rows.bottom + 1) / (mirror.rotation().height() - 1) * pi))
    {
    }

    const MirroredColumns &mirror() const { return m_mirror; }
    const uint32_t *pixels() const { return m_pixels; }
    Finish finish() const { return m_finish; }
    int topRow() const { return static_cast<int>(m_rows.top); }

    /// The columns that can reach the visible cap: Z' is monotonic between the longitudes -90 and 90.
    Span pairs(int y) const
    {
        constexpr double slack = 1e-12; // far more than doubles are off, far less than a row
        const SphereRotation &rotation = m_mirror.rotation();
        const double zBySine = -rotation.sineOfAngle() * rotation.row(y).cosine;
        const double z = rotation.cosineOfAngle() * rotation.row(y).sine;
        const auto inCap = [&](int pair) {
            return zBySine * rotation.column(m_mirror.column(pair)).sine + z < m_zLimit + slack;
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

    int32_t index(int column, int row) const
    {
        return m_sample(m_directions[size_t(column)], m_rows.radii[size_t(row)]);
    }

    int32_t exactIndex(MapPosition position) const
    {
        const bool painted = position.column >= 0 && position.column < m_mirror.rotation().width() &&
                             position.row >= m_rows.top && position.row <= m_rows.bottom;
        return painted ? index(position.column, position.row) : GatherBatch::none;
    }

private:
    const MirroredColumns &m_mirror;
    const PaintedRows &m_rows;
    const std::vector<CosineSine> &m_directions;
    BoundedSampler<Clipped> m_sample;
    const uint32_t *m_pixels;
    Finish m_finish;
    double m_zLimit;
};

} // namespace

bool paintComposedMap(const NearSidedPerspective &perspective, const ConstImageView &photograph,
                      const MapRotation &mapRotation, const ImageView &canvas, const PaintListener &listener,
                      ApproximateSources approximate)
{
    const int width = canvas.width;
    const int height = canvas.height;
    if (!MirroredColumns::cover(3, width, height))
        return false;
    const PaintedRows rows(perspective, height);
    if (rows.count() == 0)
        return true;
    const PerspectiveParameters &parameters = perspective.parameters();
    const std::vector<CosineSine> directions =
        shiftedDirections(perspective, width, mapRotation.azimuthShift);
    const SampleBounds bounds = boundsOfSamples(parameters, photograph, directions, rows.largestRadius);
    if (bounds == SampleBounds::Unknown)
        return false;

    const MirroredColumns mirror(SphereRotation(3, mapRotation.angleDeg, width, height));
    const auto paint = [&](const auto &sample) {
        withPixelFinish(photograph, [&](auto finish) {
            const DiscSource source(mirror, rows, directions, sample, photograph.pixels, finish);
            TiledRemap remap(source, mapRotation.longitudeShift, canvas, approximate);
            if (listener.mapBegins)
                listener.mapBegins(remap.painted(0, height));
            const auto bandBegins = [&](int top, int bottom) {
                if (listener.bandBegins)
                    listener.bandBegins(remap.painted(top, bottom));
            };
            const auto rowsDone = [&](int done) {
                if (listener.rowsDone)
                    listener.rowsDone(static_cast<int>((rows.count() * done + height - 1) / height));
            };
            remap.paint(bandBegins, rowsDone);
        });
    };
    if (bounds == SampleBounds::Inside)
        paint(BoundedSampler<false>(parameters, photograph));
    else
        paint(BoundedSampler<true>(parameters, photograph));
    return true;
}

} // namespace projection
