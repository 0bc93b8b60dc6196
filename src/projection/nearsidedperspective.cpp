#include "nearsidedperspective.h"

#include "integers.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace
{

/// The lens compression near the disc edge: radii beyond the breakpoints are drawn inwards.
struct RadialCorrection {
    explicit RadialCorrection(double tangentToPixels)
        : begin(0.1 * tangentToPixels)
        , end(0.114 * tangentToPixels)
        , offset((end - begin) * 0.09999999999999998) // 1 - 0.9 as a double computes it
    {
    }

    double operator()(double rho) const
    {
        if (rho < begin)
            return rho;
        if (rho < end)
            return (rho - begin) * 0.9 + begin;
        return rho - offset;
    }

    double begin;
    double end;
    double offset;
};

} // namespace

NearSidedPerspective::NearSidedPerspective(const PerspectiveParameters &parameters) : m_parameters(parameters)
{
    const double alpha = std::asin(1 / parameters.distance); // apparent angular radius of the globe
    const double alphaDeg = alpha * 180 / pi;
    const double edgeRows = alphaDeg / (90.0 / parameters.photographHeight) * parameters.ratioY;
    m_tangentToPixels = parameters.radius / std::tan(alpha);
    const int marginRows =
        wrapToInt16(truncateToInt(parameters.margin * (parameters.ratioY * parameters.photographHeight)));
    const double firstRow = marginRows + edgeRows;
    // From the surface, from inside and from behind nothing is seen, whatever the arc sine makes of it. A
    // first row that is no number, or beyond every number of a row, lies beyond the last one.
    const bool anyRow = parameters.distance > 1 && std::abs(firstRow) <= std::numeric_limits<int>::max();
    m_firstRow = anyRow ? truncateToInt(firstRow) : std::numeric_limits<int>::max();
}

bool NearSidedPerspective::hasRow(int64_t k) const
{
    return k < std::numeric_limits<int>::max() &&
           m_parameters.ratioY * m_parameters.photographHeight - 1 >= static_cast<double>(k);
}

double NearSidedPerspective::radius(int64_t k) const
{
    const double rows = m_parameters.ratioY * m_parameters.photographHeight;
    const double phi = (90 - static_cast<double>(k) * 90 / rows) * radiansPerDegree;
    const double tangent = std::tan(std::atan(std::sin(phi) / (m_parameters.distance - std::cos(phi))));
    return RadialCorrection(m_tangentToPixels)(tangent * m_tangentToPixels);
}

Direction NearSidedPerspective::direction(int x, int mapWidth) const
{
    const double columns = m_parameters.ratioX * m_parameters.photographWidth;
    const int c = mapWidth - 1 - x;
    const double lambda = (c * 360.0 / columns + (-180)) * radiansPerDegree;
    return {std::cos(lambda), std::sin(lambda)};
}

std::vector<Direction> NearSidedPerspective::directions(int mapWidth) const
{
    std::vector<Direction> result;
    for (int x = 0; mapWidth <= largestTable && x < mapWidth; ++x)
        result.push_back(direction(x, mapWidth));
    return result;
}

Samples samplesWithin(const PerspectiveParameters &parameters, const ConstImageView &photograph,
                      const std::vector<Direction> &directions, double largestRadius)
{
    constexpr int64_t largestCentre = 1 << 30;
    const int64_t centerX = parameters.centerX;
    const int64_t centerY = parameters.centerY;
    // The left edge has the largest longitude: if its direction is a number, all are.
    if (!(largestRadius <= std::numeric_limits<int16_t>::max()) || directions.empty() ||
        !std::isfinite(directions.front().cosine) || std::abs(centerX) > largestCentre ||
        std::abs(centerY) > largestCentre ||
        photograph.stride * photograph.height > std::numeric_limits<int32_t>::max())
        return Samples::Wrapping;
    const int reach = static_cast<int>(largestRadius);
    const bool inside = centerX - reach >= 0 && centerX + reach < photograph.width && centerY - reach >= 0 &&
                        centerY + reach < photograph.height;
    return inside ? Samples::Inside : Samples::Clipped;
}

Sample sampleAnywhere(const PerspectiveParameters &parameters, Direction direction, double radius)
{
    return {int64_t(wrapToInt16(truncateToInt(direction.cosine * radius))) + parameters.centerX,
            int64_t(wrapToInt16(truncateToInt(direction.sine * radius))) + parameters.centerY};
}

namespace
{

template <typename Sampler, typename Finish>
void paintBoundedRow(const Sampler &sample, const ConstImageView &photograph, Finish finish,
                     const std::vector<Direction> &directions, double radius, uint32_t *line)
{
    GatherQueue<Finish> queue(photograph.pixels, finish);
    for (size_t begin = 0; begin < directions.size(); begin += GatherBatch::capacity) {
        GatherBatch &batch = queue.next();
        batch.count = static_cast<int>(std::min<size_t>(GatherBatch::capacity, directions.size() - begin));
        batch.out = line + begin;
        for (int i = 0; i < batch.count; ++i)
            batch.indexes[i] = sample(directions[begin + size_t(i)], radius);
        queue.submit();
    }
    queue.flush();
}

} // namespace

void paintMapRow(const PerspectiveParameters &parameters, const ConstImageView &photograph,
                 const std::vector<Direction> &directions, double radius, uint32_t *line)
{
    const Samples samples = samplesWithin(parameters, photograph, directions, std::abs(radius));
    withPixelFinish(photograph, [&](auto finish) {
        if (samples == Samples::Inside)
            return paintBoundedRow(BoundedSampler<false>(parameters, photograph), photograph, finish,
                                   directions, radius, line);
        if (samples == Samples::Clipped)
            return paintBoundedRow(BoundedSampler<true>(parameters, photograph), photograph, finish,
                                   directions, radius, line);
        for (const Direction &direction : directions) {
            const Sample sample = sampleAnywhere(parameters, direction, radius);
            if (sample.x >= 0 && sample.x < photograph.width && sample.y >= 0 && sample.y < photograph.height)
                *line = finish(photograph.pixels[sample.y * photograph.stride + sample.x]);
            ++line;
        }
    });
}

int64_t countRowSamples(const NearSidedPerspective &perspective, double radius, int mapWidth)
{
    const PerspectiveParameters &parameters = perspective.parameters();
    int64_t count = 0;
    for (int x = 0; x < mapWidth; ++x) {
        const Sample sample = sampleAnywhere(parameters, perspective.direction(x, mapWidth), radius);
        count += sample.x >= 0 && sample.x <= parameters.photographWidth && sample.y >= 0 &&
                 sample.y < parameters.photographHeight;
    }
    return count;
}
