#include "disclimb.h"

#include "evenlight.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <optional>
#include <vector>

namespace
{

constexpr double smallestRadius = 4.0;
constexpr double leastGain = 20.0;       // of a sector that shows a limb at all
constexpr double mostFromASector = 25.0; // a sector that disagrees costs no more, whatever it shows

/// A change of the circle, in steps of the profiles.
struct Move {
    double x = 0.0;
    double y = 0.0;
    double grow = 0.0;

    double offset(const DiscDirection &d) const { return grow + x * d.x + y * d.y; }
};

/// Away from the sun the light fades towards a terminator that looks like a limb further in. Where one side's
/// steps are clearly higher than the other's, the lower side hardly counts.
void weigh(std::vector<LimbSector> &sectors)
{
    constexpr double beside = 0.17; // of the profile: the steps are measured close to the limb
    std::vector<DirectedLight> steps;
    for (const LimbSector &sector : sectors) {
        double sky = 0.0;
        steps.push_back({sector.direction, std::abs(sector.contrast(sector.own, beside, sky))});
    }
    const EvenLight light = evenLightThrough(steps);
    const double rise = std::sqrt(light.slopeX * light.slopeX + light.slopeY * light.slopeY);
    if (!(rise > 1e-6))
        return;
    const double unevenness = std::clamp(4.0 * (rise / (std::abs(light.level) + 1e-6) - 0.1), 0.0, 1.0);
    for (LimbSector &sector : sectors) {
        const double toSun = (light.slopeX * sector.direction.x + light.slopeY * sector.direction.y) / rise;
        sector.weight = 1.0 - 0.97 * unevenness * std::clamp(0.5 - 1.25 * toSun, 0.0, 1.0);
    }
}

/// The search for the move that the sectors agree on best.
class MoveSearch
{
public:
    explicit MoveSearch(const LimbSectors &read) : m_read(read), m_least(total(m_best)) {}

    Move run()
    {
        for (int grow = -10; grow <= 10; ++grow)
            tryMove({0.0, 0.0, static_cast<double>(grow)});
        tryTriples();
        goDownhill();
        return m_best;
    }

private:
    double total(const Move &move) const
    {
        double sum = 0.0;
        for (const LimbSector &sector : m_read.sectors) {
            const double cost = sector.cost(move.offset(sector.direction), m_read.samples);
            sum += sector.weight * cost / (1.0 + cost / mostFromASector);
        }
        return sum;
    }
    bool tryMove(const Move &move)
    {
        const double sum = total(move);
        if (sum >= m_least)
            return false;
        m_least = sum;
        m_best = move;
        return true;
    }

    /// The move that brings the limb to the own places of three sectors.
    static std::optional<Move> moveTo(const LimbSector &a, const LimbSector &b, const LimbSector &c)
    {
        const double bx = b.direction.x - a.direction.x;
        const double by = b.direction.y - a.direction.y;
        const double cx = c.direction.x - a.direction.x;
        const double cy = c.direction.y - a.direction.y;
        const double determinant = bx * cy - by * cx;
        if (std::abs(determinant) < 0.05)
            return std::nullopt;
        const double toB = b.own - a.own;
        const double toC = c.own - a.own;
        Move move;
        move.x = (toB * cy - toC * by) / determinant;
        move.y = (bx * toC - cx * toB) / determinant;
        move.grow = a.own - move.x * a.direction.x - move.y * a.direction.y;
        return move;
    }
    /// The limb of a phase may be only a half of what bends here: three sectors that lie on it are enough.
    void tryTriples()
    {
        std::vector<const LimbSector *> clear;
        for (const LimbSector &sector : m_read.sectors)
            if (sector.gain(m_read.samples) > leastGain)
                clear.push_back(&sector);
        for (const std::size_t stride : {4U, 6U, 8U, 10U, 13U, 17U}) {
            for (std::size_t i = 0; i < clear.size() && 2 * stride < clear.size(); ++i) {
                const LimbSector &second = *clear[(i + stride) % clear.size()];
                const LimbSector &third = *clear[(i + 2 * stride) % clear.size()];
                if (const std::optional<Move> move = moveTo(*clear[i], second, third))
                    tryMove(*move);
            }
        }
    }

    /// From the best move in ever smaller steps in all directions.
    void goDownhill()
    {
        double step = 1.0;
        for (int halving = 0; halving < 6; ++halving) {
            for (int turn = 0; turn < 8 && tryAround(m_best, step); ++turn)
                continue;
            step *= 0.5;
        }
    }
    bool tryAround(Move from, double step)
    {
        bool moved = false;
        for (const double grow : {-step, 0.0, step})
            for (const double y : {-step, 0.0, step})
                for (const double x : {-step, 0.0, step})
                    moved = tryMove({from.x + x, from.y + y, from.grow + grow}) || moved;
        return moved;
    }

    const LimbSectors &m_read;
    Move m_best;
    double m_least;
};

/// The error of centre or radius, whichever is worse, that single limb positions with this scatter leave.
double expectedError(const std::vector<const LimbSector *> &backed, double scatter)
{
    DirectionMatrix m;
    for (const LimbSector *sector : backed)
        m.add(sector->direction);
    const double determinant = m.determinant();
    if (determinant <= 0.0)
        return 1.0;
    const double radius = (m.xx * m.yy - m.xy * m.xy) / determinant;
    const double centre = (m.n * m.yy - m.y * m.y + m.n * m.xx - m.x * m.x) / determinant;
    return scatter * std::sqrt(std::max(radius, centre));
}

/// Fills in how well the sectors back the circle.
void judge(const LimbSectors &read, const Move &move, LimbFit &fit)
{
    constexpr std::size_t leastSectors = 8;
    constexpr double leastContrast = 1.5;
    constexpr double beside = 0.3;
    std::vector<const LimbSector *> backed;
    std::vector<DirectedLight> skies;
    std::vector<double> contrasts;
    std::vector<double> distances;
    std::size_t brighter = 0;
    for (const LimbSector &sector : read.sectors) {
        const double offset = move.offset(sector.direction);
        const double off = std::abs(sector.own - offset);
        if (sector.gain(read.samples) < leastGain || (sector.cost(offset, read.samples) > 12.0 && off > 1.0))
            continue;
        double sky = 0.0;
        const double contrast = sector.contrast(offset, beside, sky);
        if (std::abs(contrast) < leastContrast)
            continue;
        backed.push_back(&sector);
        skies.push_back({sector.direction, sky});
        contrasts.push_back(std::abs(contrast));
        distances.push_back(off * read.step / fit.circle.radius);
        brighter += contrast > 0.0 ? 1 : 0;
    }
    if (backed.size() < leastSectors)
        return;
    const auto count = static_cast<double>(backed.size());
    fit.backed = count / static_cast<double>(limbSectorCount);
    fit.oneWay = static_cast<double>(std::max(brighter, backed.size() - brighter)) / count;
    fit.contrast = upperMedian(contrasts);
    // No position is known better than to a twentieth of a pixel; 1.48 medians are a standard deviation.
    fit.scatter = upperMedian(distances);
    fit.error = expectedError(backed, std::max(1.48 * fit.scatter, 0.05 / fit.circle.radius));

    const EvenLight sky = evenLightThrough(skies);
    const double skyScatter = medianDistance(sky, skies);
    fit.skyScatter = skyScatter / fit.contrast;
    const double most = std::max(0.2 * fit.contrast, 4.0 * skyScatter);
    int clear = 0;
    for (const LimbSector &sector : read.sectors) {
        double light = 0.0;
        sector.contrast(move.offset(sector.direction), beside, light);
        clear += sky.distance(sector.direction, light) <= most ? 1 : 0;
    }
    fit.clear = clear / static_cast<double>(read.sectors.size());
}

} // namespace

LimbFit fitLimb(LimbSource &source, const DiscCircle &circle, double halfWidth, LimbEffort effort)
{
    LimbFit fit;
    fit.circle = circle;
    if (!(circle.radius >= smallestRadius))
        return fit;
    LimbSectors read = readSectors(source, circle, halfWidth, effort);
    fit.visible = static_cast<double>(read.sectors.size()) / static_cast<double>(limbSectorCount);
    if (read.sectors.size() < limbSectorCount / 5)
        return fit;
    fit.blur = read.blur * read.step;
    weigh(read.sectors);
    const Move move = MoveSearch(read).run();
    fit.circle.x += move.x * read.step;
    fit.circle.y += move.y * read.step;
    fit.circle.radius += move.grow * read.step;
    if (fit.circle.radius >= smallestRadius)
        judge(read, move, fit);
    return fit;
}
