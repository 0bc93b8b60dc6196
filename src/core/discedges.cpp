#include "discedges.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>
#include <utility>

namespace
{

constexpr std::size_t shortestChain = 9; // a star's outline is shorter

struct Gradient {
    DiscPlane x;
    DiscPlane y;
    DiscPlane strength;
};

/// Smoothed with a bell of 1.4 pixels: strong enough that noise keeps its directions apart, weak enough that a
/// disc of 12 pixels stays one. The outermost pixels are repeated beyond the frame.
DiscPlane smoothed(const DiscPlane &plane)
{
    constexpr std::array bell = {0.2853F, 0.2211F, 0.1028F, 0.0287F, 0.0048F};
    const int reach = static_cast<int>(bell.size()) - 1;
    const auto width = static_cast<std::size_t>(plane.width);
    const auto sum = [&](float c, float n1, float n2, float n3, float n4) {
        return bell[0] * c + bell[1] * n1 + bell[2] * n2 + bell[3] * n3 + bell[4] * n4;
    };
    DiscPlane across(plane.width, plane.height);
    std::vector<float> padded(width + 2 * static_cast<std::size_t>(reach));
    for (int y = 0; y < plane.height; ++y) {
        const float *row = &plane.values[plane.index(0, y)];
        std::fill_n(padded.begin(), reach, row[0]);
        std::copy_n(row, width, padded.begin() + reach);
        std::fill_n(padded.end() - reach, reach, row[width - 1]);
        const float *p = padded.data() + reach;
        float *target = &across.values[plane.index(0, y)];
        for (int x = 0; x < plane.width; ++x)
            target[x] =
                sum(p[x], p[x - 1] + p[x + 1], p[x - 2] + p[x + 2], p[x - 3] + p[x + 3], p[x - 4] + p[x + 4]);
    }
    DiscPlane result(plane.width, plane.height);
    for (int y = 0; y < plane.height; ++y) {
        const auto row = [&](int k) {
            return &across.values[plane.index(0, std::clamp(y + k, 0, plane.height - 1))];
        };
        const float *rows[9] = {row(-4), row(-3), row(-2), row(-1), row(0), row(1), row(2), row(3), row(4)};
        float *target = &result.values[plane.index(0, y)];
        for (int x = 0; x < plane.width; ++x)
            target[x] = sum(rows[4][x], rows[3][x] + rows[5][x], rows[2][x] + rows[6][x],
                            rows[1][x] + rows[7][x], rows[0][x] + rows[8][x]);
    }
    return result;
}

Gradient gradientOf(const DiscPlane &plane)
{
    Gradient result = {DiscPlane(plane.width, plane.height), DiscPlane(plane.width, plane.height),
                       DiscPlane(plane.width, plane.height)};
    for (int y = 1; y + 1 < plane.height; ++y) {
        for (int x = 1; x + 1 < plane.width; ++x) {
            const float dx = 0.5F * (plane.at(x + 1, y) - plane.at(x - 1, y));
            const float dy = 0.5F * (plane.at(x, y + 1) - plane.at(x, y - 1));
            result.x.at(x, y) = dx;
            result.y.at(x, y) = dy;
            result.strength.at(x, y) = std::sqrt(dx * dx + dy * dy);
        }
    }
    return result;
}

/// What noise alone hardly reaches. A quarter of every picture is calm; the lengths of random gradients follow
/// Rayleigh's law, whose lower quartile is 0.76 of its parameter. Strong texture must not raise it for ever.
float leastStrength(const DiscPlane &strength)
{
    std::vector<float> sample;
    for (std::size_t i = 0; i < strength.values.size(); i += 5)
        sample.push_back(strength.values[i]);
    const auto quartile = sample.begin() + static_cast<std::ptrdiff_t>(sample.size() / 4);
    std::nth_element(sample.begin(), quartile, sample.end());
    return std::clamp(3.4F * *quartile / 0.76F, 0.7F, 4.5F);
}

/// Whether the strength has a ridge here, and how far from the pixel's middle, in steps along the gradient.
bool isRidge(const Gradient &gradient, int x, int y, float &shift)
{
    const float here = gradient.strength.at(x, y);
    const float dx = gradient.x.at(x, y) / here;
    const float dy = gradient.y.at(x, y) / here;
    const auto strengthAt = [&](float u, float v) {
        const float fx = std::floor(u);
        const float fy = std::floor(v);
        const int ix = static_cast<int>(fx);
        const int iy = static_cast<int>(fy);
        const float tx = u - fx;
        const float ty = v - fy;
        const float top = gradient.strength.at(ix, iy) * (1.0F - tx) + gradient.strength.at(ix + 1, iy) * tx;
        const float bottom =
            gradient.strength.at(ix, iy + 1) * (1.0F - tx) + gradient.strength.at(ix + 1, iy + 1) * tx;
        return top * (1.0F - ty) + bottom * ty;
    };
    const float ahead = strengthAt(static_cast<float>(x) + dx, static_cast<float>(y) + dy);
    const float behind = strengthAt(static_cast<float>(x) - dx, static_cast<float>(y) - dy);
    if (!(here >= ahead && here > behind))
        return false;
    const float bend = 2.0F * here - ahead - behind;
    shift = bend > 0.0F ? std::clamp(0.5F * (ahead - behind) / bend, -0.7F, 0.7F) : 0.0F;
    return true;
}

/// Chains of points: each point is joined with those in the pixels beside it whose direction is like its own.
class Chains
{
public:
    explicit Chains(std::size_t count) : m_parents(count)
    {
        std::iota(m_parents.begin(), m_parents.end(), 0);
    }
    int rootOf(int i)
    {
        while (m_parents[static_cast<std::size_t>(i)] != i) {
            int &parent = m_parents[static_cast<std::size_t>(i)];
            parent = m_parents[static_cast<std::size_t>(parent)];
            i = parent;
        }
        return i;
    }
    void join(int a, int b) { m_parents[static_cast<std::size_t>(rootOf(a))] = rootOf(b); }

private:
    std::vector<int> m_parents;
};

bool areAlike(const EdgePoint &a, const EdgePoint &b)
{
    return a.normalX * b.normalX + a.normalY * b.normalY > 0.82F;
}

void collectPoints(const Gradient &gradient, DiscEdges &edges)
{
    const float least = leastStrength(gradient.strength);
    for (int y = 2; y + 2 < edges.height; ++y) {
        for (int x = 2; x + 2 < edges.width; ++x) {
            const float strength = gradient.strength.at(x, y);
            float shift = 0.0F;
            if (strength < least || !isRidge(gradient, x, y, shift))
                continue;
            const float nx = gradient.x.at(x, y) / strength;
            const float ny = gradient.y.at(x, y) / strength;
            edges.map[gradient.x.index(x, y)] = static_cast<int>(edges.points.size());
            edges.points.push_back({static_cast<float>(x) + 0.5F + shift * nx,
                                    static_cast<float>(y) + 0.5F + shift * ny, nx, ny, 0});
        }
    }
}

void joinNeighbours(const DiscEdges &edges, Chains &chains)
{
    constexpr int besides[4][2] = {{1, 0}, {-1, 1}, {0, 1}, {1, 1}};
    for (int y = 2; y + 2 < edges.height; ++y) {
        for (int x = 2; x + 2 < edges.width; ++x) {
            const int index = edges.indexAt(x, y);
            if (index < 0)
                continue;
            for (const auto &beside : besides) {
                const int other = edges.indexAt(x + beside[0], y + beside[1]);
                if (other >= 0 && areAlike(edges.points[static_cast<std::size_t>(index)],
                                           edges.points[static_cast<std::size_t>(other)]))
                    chains.join(index, other);
            }
        }
    }
}

/// Sorts the points by chain, the longest first, and drops the short ones.
void sortByChain(DiscEdges &edges, Chains &chains)
{
    std::vector<std::vector<int>> members(edges.points.size());
    for (std::size_t i = 0; i < edges.points.size(); ++i)
        members[static_cast<std::size_t>(chains.rootOf(static_cast<int>(i)))].push_back(static_cast<int>(i));
    std::vector<std::vector<int>> kept;
    for (std::vector<int> &chain : members)
        if (chain.size() >= shortestChain)
            kept.push_back(std::move(chain));
    std::stable_sort(kept.begin(), kept.end(),
                     [](const auto &a, const auto &b) { return a.size() > b.size(); });
    std::vector<EdgePoint> sorted;
    std::vector<int> places(edges.points.size(), -1);
    for (std::size_t c = 0; c < kept.size(); ++c) {
        edges.chainStarts.push_back(static_cast<int>(sorted.size()));
        for (const int i : kept[c]) {
            places[static_cast<std::size_t>(i)] = static_cast<int>(sorted.size());
            sorted.push_back(edges.points[static_cast<std::size_t>(i)]);
            sorted.back().chain = static_cast<int>(c);
        }
    }
    edges.chainStarts.push_back(static_cast<int>(sorted.size()));
    for (int &index : edges.map)
        index = index < 0 ? -1 : places[static_cast<std::size_t>(index)];
    edges.points = std::move(sorted);
}

} // namespace

DiscEdges findEdges(const DiscPlane &plane)
{
    DiscEdges edges;
    edges.width = plane.width;
    edges.height = plane.height;
    edges.map.assign(plane.values.size(), -1);
    collectPoints(gradientOf(smoothed(plane)), edges);
    Chains chains(edges.points.size());
    joinNeighbours(edges, chains);
    sortByChain(edges, chains);
    return edges;
}
