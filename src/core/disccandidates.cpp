#include "disccandidates.h"

#include "discedges.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <optional>
#include <random>

namespace
{

constexpr std::size_t mostCandidates = 10;
constexpr double worthALook = 0.45; // of the best score

/// Three points of a circle that is random but the same each time.
struct Triple {
    const EdgePoint *points[3];
};

struct Scored {
    DiscCircle circle;
    double score;
};

/// Draws from the generator whose numbers the standard defines; its distributions are left to each library.
class Lots
{
public:
    int below(int count)
    {
        return static_cast<int>((std::uint64_t{m_engine()} * static_cast<std::uint64_t>(count)) >> 32U);
    }

private:
    std::mt19937 m_engine{20}; // any number will do
};

class CandidateSearch
{
public:
    explicit CandidateSearch(const DiscEdges &edges)
        : m_edges(edges)
        , m_directions(everyThirdDegree())
        , m_shorter(std::min(edges.width, edges.height))
        , m_longer(std::max(edges.width, edges.height))
    {
    }

    std::vector<DiscCircle> run()
    {
        drawWithinChains();
        drawAcrossChains();
        drawAnywhere();
        return best();
    }

private:
    static constexpr int mostChains = 60;

    int chainCount() const { return static_cast<int>(m_edges.chainStarts.size()) - 1; }
    const EdgePoint *point(int i) const { return &m_edges.points[static_cast<std::size_t>(i)]; }
    const EdgePoint *anyOf(int chain)
    {
        const int first = m_edges.chainStarts[static_cast<std::size_t>(chain)];
        const int end = m_edges.chainStarts[static_cast<std::size_t>(chain) + 1];
        return point(first + m_lots.below(end - first));
    }

    void drawWithinChains()
    {
        for (int chain = 0; chain < std::min(chainCount(), mostChains); ++chain)
            for (int i = 0; i < 60; ++i)
                consider({{anyOf(chain), anyOf(chain), anyOf(chain)}});
    }
    void drawAcrossChains()
    {
        const int chains = std::min(chainCount(), mostChains);
        const int count = static_cast<int>(m_edges.points.size());
        for (int i = 0; i < 6000 && chains > 0; ++i) {
            const int chain = m_lots.below(chains);
            consider({{anyOf(chain), anyOf(chain), point(m_lots.below(count))}});
        }
    }
    void drawAnywhere()
    {
        const int count = static_cast<int>(m_edges.points.size());
        for (int i = 0; i < 20000 && count > 0; ++i)
            consider({{point(m_lots.below(count)), point(m_lots.below(count)), point(m_lots.below(count))}});
    }

    void consider(const Triple &triple)
    {
        const std::optional<DiscCircle> circle = circleThrough(triple);
        if (!circle || !isPossible(*circle))
            return;
        for (const EdgePoint *p : triple.points)
            if (!runsAlong(*circle, *p))
                return;
        // Most random circles fail on a quarter of the directions already.
        if (score(*circle, 4) < 0.2)
            return;
        const double support = score(*circle, 1);
        if (support > 0.2)
            m_found.push_back({*circle, support});
    }

    static std::optional<DiscCircle> circleThrough(const Triple &triple)
    {
        const auto x0 = static_cast<double>(triple.points[0]->x);
        const auto y0 = static_cast<double>(triple.points[0]->y);
        const double ax = static_cast<double>(triple.points[1]->x) - x0;
        const double ay = static_cast<double>(triple.points[1]->y) - y0;
        const double bx = static_cast<double>(triple.points[2]->x) - x0;
        const double by = static_cast<double>(triple.points[2]->y) - y0;
        const double area = 2.0 * (ax * by - ay * bx);
        if (std::abs(area) < 4.0)
            return std::nullopt;
        const double a = ax * ax + ay * ay;
        const double b = bx * bx + by * by;
        const double cx = (by * a - ay * b) / area;
        const double cy = (ax * b - bx * a) / area;
        return DiscCircle{x0 + cx, y0 + cy, std::sqrt(cx * cx + cy * cy)};
    }
    bool isPossible(const DiscCircle &c) const
    {
        const double beyond = 0.4 * c.radius;
        return c.radius >= std::max(6.0, 0.05 * m_shorter) && c.radius <= 0.9 * m_longer && c.x > -beyond &&
               c.y > -beyond && c.x < m_edges.width + beyond && c.y < m_edges.height + beyond;
    }
    /// Whether an edge at this point may be one of the circle: its normal points to or from the centre.
    static bool runsAlong(const DiscCircle &c, const EdgePoint &p)
    {
        const double dx = static_cast<double>(p.x) - c.x;
        const double dy = static_cast<double>(p.y) - c.y;
        const double along = dx * static_cast<double>(p.normalX) + dy * static_cast<double>(p.normalY);
        return along * along > 0.9 * (dx * dx + dy * dy);
    }

    /// The edge point of the circle in a direction, as near to its line as there is one.
    const EdgePoint *pointTowards(const DiscCircle &c, const DiscDirection &d, double &brighterInside) const
    {
        for (const double offset : {0.0, 1.0, -1.0, 2.0, -2.0}) {
            const double r = c.radius + offset;
            const EdgePoint *p = m_edges.near(c.x + r * d.x, c.y + r * d.y);
            if (!p)
                continue;
            brighterInside = -(static_cast<double>(p->normalX) * d.x + static_cast<double>(p->normalY) * d.y);
            if (std::abs(brighterInside) > 0.93)
                return p;
        }
        return nullptr;
    }

    /// How much of the circle is backed by edges that run along it: 1 when all of it is, and all one way round.
    /// What lies outside the frame counts as half a failure. A larger circle gets a little more.
    double score(const DiscCircle &c, std::size_t step) const
    {
        double brighter = 0.0;
        double darker = 0.0;
        double looked = 0.0;
        double visible = 0.0;
        for (std::size_t i = 0; i < m_directions.size(); i += step) {
            const DiscDirection &d = m_directions[i];
            const double x = c.x + c.radius * d.x;
            const double y = c.y + c.radius * d.y;
            looked += 1.0;
            if (!(x >= 2.0 && y >= 2.0 && x < m_edges.width - 2 && y < m_edges.height - 2))
                continue;
            visible += 1.0;
            double inside = 0.0;
            if (pointTowards(c, d, inside))
                (inside > 0.0 ? brighter : darker) += 1.0;
        }
        const double backed = std::max(brighter, darker) + 0.6 * std::min(brighter, darker);
        const double size = 0.75 + 0.25 * std::min(2.0 * c.radius / m_shorter, 1.0);
        return size * backed / (0.5 * looked + 0.5 * visible);
    }

    /// The circle that fits its own edge points best, three times over, since a better circle has more of them.
    Scored refined(Scored scored) const
    {
        for (int turn = 0; turn < 3; ++turn) {
            const DiscCircle next = fitted(scored.circle);
            if (!isPossible(next))
                break;
            const double support = score(next, 1);
            if (support < scored.score)
                break;
            scored = {next, support};
        }
        return scored;
    }
    /// One step of least squares in centre and radius, on the points' distances from the circle.
    DiscCircle fitted(const DiscCircle &c) const
    {
        double n = 0.0, sx = 0.0, sy = 0.0, sxx = 0.0, sxy = 0.0, syy = 0.0;
        double r = 0.0, rx = 0.0, ry = 0.0;
        for (const DiscDirection &d : m_directions) {
            double inside = 0.0;
            const EdgePoint *p = pointTowards(c, d, inside);
            if (!p)
                continue;
            const double dx = static_cast<double>(p->x) - c.x;
            const double dy = static_cast<double>(p->y) - c.y;
            const double distance = std::sqrt(dx * dx + dy * dy);
            const double off = distance - c.radius;
            const double ux = dx / distance;
            const double uy = dy / distance;
            n += 1.0;
            sx += ux;
            sy += uy;
            sxx += ux * ux;
            sxy += ux * uy;
            syy += uy * uy;
            r += off;
            rx += off * ux;
            ry += off * uy;
        }
        const double a = sxx * n - sx * sx;
        const double b = sxy * n - sx * sy;
        const double e = syy * n - sy * sy;
        const double determinant = a * e - b * b;
        if (n < 5.0 || !(determinant > 1e-6 * n * n * n * n))
            return c;
        const double p = rx * n - r * sx;
        const double q = ry * n - r * sy;
        const double moveX = (p * e - q * b) / determinant;
        const double moveY = (a * q - b * p) / determinant;
        const double grow = (r - moveX * sx - moveY * sy) / n;
        return {c.x + moveX, c.y + moveY, c.radius + grow};
    }

    static bool areNear(const DiscCircle &a, const DiscCircle &b)
    {
        const double most = std::max(2.0, 0.05 * std::max(a.radius, b.radius));
        return std::abs(a.x - b.x) < most && std::abs(a.y - b.y) < most &&
               std::abs(a.radius - b.radius) < most;
    }

    void sortFound()
    {
        std::stable_sort(m_found.begin(), m_found.end(),
                         [](const Scored &a, const Scored &b) { return a.score > b.score; });
    }
    /// The best that differ from each other.
    std::vector<Scored> different(std::size_t most) const
    {
        std::vector<Scored> result;
        for (const Scored &scored : m_found) {
            const bool isNew = std::none_of(result.begin(), result.end(), [&](const Scored &other) {
                return areNear(scored.circle, other.circle);
            });
            if (isNew)
                result.push_back(scored);
            if (result.size() == most)
                break;
        }
        return result;
    }
    std::vector<DiscCircle> best()
    {
        sortFound();
        m_found = different(4 * mostCandidates);
        for (Scored &scored : m_found)
            scored = refined(scored);
        sortFound();
        std::vector<DiscCircle> result;
        for (const Scored &scored : different(mostCandidates))
            if (scored.score >= worthALook * m_found.front().score)
                result.push_back(scored.circle);
        return result;
    }

    const DiscEdges &m_edges;
    const std::array<DiscDirection, 120> m_directions;
    const int m_shorter;
    const int m_longer;
    Lots m_lots;
    std::vector<Scored> m_found;
};

} // namespace

std::vector<DiscCircle> candidateCircles(const DiscEdges &edges)
{
    return edges.points.empty() ? std::vector<DiscCircle>() : CandidateSearch(edges).run();
}
