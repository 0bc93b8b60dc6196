#include "evenlight.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

void DirectionMatrix::add(const DiscDirection &d)
{
    n += 1.0;
    x += d.x;
    y += d.y;
    xx += d.x * d.x;
    xy += d.x * d.y;
    yy += d.y * d.y;
}

double DirectionMatrix::determinant() const
{
    const double value = n * (xx * yy - xy * xy) - x * (x * yy - xy * y) + y * (x * xy - xx * y);
    return value > 1e-6 ? value : 0.0;
}

double EvenLight::distance(const DiscDirection &d, double light) const
{
    return std::abs(light - level - slopeX * d.x - slopeY * d.y);
}

EvenLight evenLightThrough(const std::vector<DirectedLight> &lights)
{
    constexpr double farAway = 2.5; // median distances
    EvenLight even;
    double limit = 1e30;
    for (int turn = 0; turn < 3; ++turn) {
        DirectionMatrix m;
        double s = 0.0, sx = 0.0, sy = 0.0;
        for (const DirectedLight &value : lights) {
            if (even.distance(value.direction, value.light) > limit)
                continue;
            m.add(value.direction);
            s += value.light;
            sx += value.light * value.direction.x;
            sy += value.light * value.direction.y;
        }
        const double determinant = m.determinant();
        if (determinant <= 0.0)
            break;
        // Cramer's rule.
        const double minor = m.xx * m.yy - m.xy * m.xy;
        const double a = sx * m.yy - m.xy * sy;
        const double b = sx * m.xy - m.xx * sy;
        const double c = m.x * sy - sx * m.y;
        even.level = (s * minor - m.x * a + m.y * b) / determinant;
        even.slopeX = (m.n * a - s * (m.x * m.yy - m.xy * m.y) + m.y * c) / determinant;
        even.slopeY = (-m.n * b - m.x * c + s * (m.x * m.xy - m.xx * m.y)) / determinant;
        limit = farAway * medianDistance(even, lights);
    }
    return even;
}

double medianDistance(const EvenLight &even, const std::vector<DirectedLight> &lights)
{
    std::vector<double> distances;
    distances.reserve(lights.size());
    for (const DirectedLight &value : lights)
        distances.push_back(even.distance(value.direction, value.light));
    return upperMedian(std::move(distances));
}

double upperMedian(std::vector<double> values)
{
    if (values.empty())
        return 0.0;
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}
