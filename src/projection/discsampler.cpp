#include "discsampler.h"

#include "integers.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <limits>

namespace projection
{

namespace
{

template <typename Sampler, typename Finish>
void paintBoundedRow(const Sampler &sample, const ConstImageView &photograph, Finish finish,
                     const std::vector<CosineSine> &directions, double radius, uint32_t *line)
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

SamplePosition sampleAnywhere(const PerspectiveParameters &parameters, CosineSine direction, double radius)
{
    return {int64_t(wrapToInt16(truncateToInt(direction.cosine * radius))) + parameters.centerX,
            int64_t(wrapToInt16(truncateToInt(direction.sine * radius))) + parameters.centerY};
}

SampleBounds boundsOfSamples(const PerspectiveParameters &parameters, const ConstImageView &photograph,
                             const std::vector<CosineSine> &directions, double largestRadius)
{
    constexpr int64_t largestCentre = 1 << 30;
    const int64_t centerX = parameters.centerX;
    const int64_t centerY = parameters.centerY;
    // The left edge has the largest longitude: if its direction is a number, all are.
    if (!(largestRadius <= std::numeric_limits<int16_t>::max()) || directions.empty() ||
        !std::isfinite(directions.front().cosine) || std::abs(centerX) > largestCentre ||
        std::abs(centerY) > largestCentre ||
        photograph.stride * photograph.height > std::numeric_limits<int32_t>::max())
        return SampleBounds::Unknown;
    const int reach = static_cast<int>(largestRadius);
    const bool inside = centerX - reach >= 0 && centerX + reach < photograph.width && centerY - reach >= 0 &&
                        centerY + reach < photograph.height;
    return inside ? SampleBounds::Inside : SampleBounds::Clipped;
}

void paintMapRow(const PerspectiveParameters &parameters, const ConstImageView &photograph,
                 const std::vector<CosineSine> &directions, double radius, uint32_t *line)
{
    const SampleBounds bounds = boundsOfSamples(parameters, photograph, directions, std::abs(radius));
    withPixelFinish(photograph, [&](auto finish) {
        if (bounds == SampleBounds::Inside)
            return paintBoundedRow(BoundedSampler<false>(parameters, photograph), photograph, finish,
                                   directions, radius, line);
        if (bounds == SampleBounds::Clipped)
            return paintBoundedRow(BoundedSampler<true>(parameters, photograph), photograph, finish,
                                   directions, radius, line);
        for (const CosineSine &direction : directions) {
            const SamplePosition sample = sampleAnywhere(parameters, direction, radius);
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
        const SamplePosition sample = sampleAnywhere(parameters, perspective.direction(x, mapWidth), radius);
        count += sample.x >= 0 && sample.x <= parameters.photographWidth && sample.y >= 0 &&
                 sample.y < parameters.photographHeight;
    }
    return count;
}

} // namespace projection
