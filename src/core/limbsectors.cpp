#include "limbsectors.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace
{

constexpr std::size_t raysPerSector = 6;
using Rays = std::array<DiscDirection, limbSectorCount * raysPerSector>;

/// The rest that rounding to whole levels leaves at least: no photograph is cleaner.
constexpr double floorRest = 0.05 * static_cast<double>(profileSamples);

double lightAt(LimbSource &source, double x, double y)
{
    const double u = std::clamp(x - 0.5, 0.0, source.width() - 1.0);
    const double v = std::clamp(y - 0.5, 0.0, source.height() - 1.0);
    const int column = std::min(static_cast<int>(u), source.width() - 2);
    const int row = std::min(static_cast<int>(v), source.height() - 2);
    const auto tx = static_cast<float>(u - column);
    const auto ty = static_cast<float>(v - row);
    const float top = source.at(column, row) * (1.0F - tx) + source.at(column + 1, row) * tx;
    const float bottom = source.at(column, row + 1) * (1.0F - tx) + source.at(column + 1, row + 1) * tx;
    return static_cast<double>(top * (1.0F - ty) + bottom * ty);
}

bool isVisible(const LimbSource &source, const DiscCircle &circle, const DiscDirection &d, double step)
{
    const double margin = std::max(1.5, 3.0 * step);
    const double x = circle.x + circle.radius * d.x;
    const double y = circle.y + circle.radius * d.y;
    return x >= margin && y >= margin && x <= source.width() - margin && y <= source.height() - margin;
}

/// The mean of a sector's rays.
LimbProfile readProfile(LimbSource &source, const DiscCircle &circle, const DiscDirection *rays, double step)
{
    const double middle = 0.5 * static_cast<double>(profileSamples - 1);
    LimbProfile profile{};
    for (std::size_t i = 0; i < profileSamples; ++i) {
        const double r = circle.radius + (static_cast<double>(i) - middle) * step;
        double sum = 0.0;
        for (std::size_t ray = 0; ray < raysPerSector; ++ray)
            sum += lightAt(source, circle.x + r * rays[ray].x, circle.y + r * rays[ray].y);
        profile[i] = static_cast<float>(sum / static_cast<double>(raysPerSector));
    }
    return profile;
}

/// The offset of the least rest, between the tried ones by a parabola.
double offsetOfLeast(const LimbRest &rest)
{
    const float *least = std::min_element(rest.begin(), rest.end());
    const auto j = static_cast<std::size_t>(least - rest.begin());
    auto place = static_cast<double>(j);
    if (j > 0 && j + 1 < limbOffsets) {
        const auto before = static_cast<double>(rest[j - 1]);
        const auto after = static_cast<double>(rest[j + 1]);
        const double bend = before + after - 2.0 * static_cast<double>(*least);
        if (bend > 0.0)
            place += 0.5 * (before - after) / bend;
    }
    return 0.5 * (place - 0.5 * static_cast<double>(limbOffsets - 1));
}

void keepRests(std::vector<LimbSector> &sectors, const std::vector<LimbRest> &rests)
{
    for (std::size_t s = 0; s < sectors.size(); ++s) {
        sectors[s].rest = rests[s];
        sectors[s].least = *std::min_element(rests[s].begin(), rests[s].end());
        sectors[s].own = offsetOfLeast(rests[s]);
    }
}

/// Tries blurs, keeps the rests of the one that leaves the smallest share of the profiles unexplained, and
/// returns it. Blurs are pixels of the source, or more where the profiles are wide.
double chooseBlur(LimbSectors &read, double radius, LimbEffort effort)
{
    static constexpr std::array fine = {0.5, 0.7, 0.9, 1.15, 1.45, 1.8, 2.2, 2.8, 3.6, 5.0};
    static constexpr std::array coarse = {0.6, 1.1, 1.8, 3.0};
    const double *blurs = effort == LimbEffort::Fine ? fine.data() : coarse.data();
    const std::size_t count = effort == LimbEffort::Fine ? fine.size() : coarse.size();
    const double unit = std::max(1.0, static_cast<double>(profileSamples) * read.step / 24.0) / read.step;

    std::vector<LimbProfile> calm;
    for (LimbSector &sector : read.sectors) {
        calm.push_back(calmed(sector.profile));
        sector.without = restWithoutLimb(calm.back());
    }
    double best = 0.0;
    double bestSum = 0.0;
    std::vector<LimbRest> rests(read.sectors.size());
    for (std::size_t i = 0; i < count; ++i) {
        const LimbModel model(radius / read.step, blurs[i] * unit);
        double sum = 0.0;
        for (std::size_t s = 0; s < read.sectors.size(); ++s) {
            rests[s] = model.rest(calm[s]);
            const float least = *std::min_element(rests[s].begin(), rests[s].end());
            sum += (static_cast<double>(least) + floorRest) /
                   (static_cast<double>(read.sectors[s].without) + floorRest);
        }
        if (i > 0 && sum >= bestSum)
            continue;
        best = blurs[i] * unit;
        bestSum = sum;
        keepRests(read.sectors, rests);
    }
    return best;
}

} // namespace

double LimbSector::cost(double offset, double samples) const
{
    constexpr auto last = static_cast<double>(limbOffsets - 1);
    const double place = std::clamp(2.0 * offset + 0.5 * last, 0.0, last - 0.001);
    const auto index = static_cast<std::size_t>(place);
    const double share = place - static_cast<double>(index);
    const double left =
        static_cast<double>(rest[index]) * (1.0 - share) + static_cast<double>(rest[index + 1]) * share;
    return samples * (left - static_cast<double>(least)) / (static_cast<double>(least) + floorRest);
}

double LimbSector::gain(double samples) const
{
    return samples * static_cast<double>(without - least) / (static_cast<double>(least) + floorRest);
}

double LimbSector::contrast(double offset, double depth, double &sky) const
{
    constexpr double blurred = 2.0; // samples beside the limb that show neither side
    const double limb = 0.5 * static_cast<double>(profileSamples - 1) + offset;
    const double reach = depth * static_cast<double>(profileSamples);
    double sums[2] = {0.0, 0.0};
    int counts[2] = {0, 0};
    for (std::size_t i = 0; i < profileSamples; ++i) {
        const double distance = static_cast<double>(i) - limb;
        if (std::abs(distance) < blurred || std::abs(distance) > reach)
            continue;
        const int side = distance > 0.0 ? 1 : 0;
        sums[side] += static_cast<double>(profile[i]);
        ++counts[side];
    }
    sky = counts[1] > 0 ? sums[1] / counts[1] : 0.0;
    return counts[0] > 0 && counts[1] > 0 ? sums[0] / counts[0] - sky : 0.0;
}

LimbSectors readSectors(LimbSource &source, const DiscCircle &circle, double halfWidth, LimbEffort effort)
{
    const Rays rays = everyDegree();
    LimbSectors read;
    read.step = 2.0 * halfWidth / static_cast<double>(profileSamples);
    read.samples = std::clamp(2.0 * halfWidth, 8.0, static_cast<double>(profileSamples));
    for (std::size_t s = 0; s < limbSectorCount; ++s) {
        LimbSector sector;
        sector.number = s;
        sector.direction = rays[s * raysPerSector + raysPerSector / 2];
        if (!isVisible(source, circle, sector.direction, read.step))
            continue;
        sector.profile = readProfile(source, circle, &rays[s * raysPerSector], read.step);
        read.sectors.push_back(sector);
    }
    read.blur = chooseBlur(read, circle.radius, effort);
    return read;
}
