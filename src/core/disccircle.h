#pragma once

#include <array>
#include <cstddef>

/// A circle in pixels of whatever it lies on.
struct DiscCircle {
    double x = 0.0;
    double y = 0.0;
    double radius = 0.0;
};

struct DiscDirection {
    double x;
    double y;
};

/// Unit vectors at equal angles all around, from the right over the bottom. They are turned on from each other
/// by products and sums, and never come from a library's sine, so that they have the same bits everywhere.
template <std::size_t count>
std::array<DiscDirection, count> directionsAround(double cosineOfStep, double sineOfStep)
{
    std::array<DiscDirection, count> directions{};
    DiscDirection d = {1.0, 0.0};
    for (DiscDirection &direction : directions) {
        direction = d;
        d = {d.x * cosineOfStep - d.y * sineOfStep, d.x * sineOfStep + d.y * cosineOfStep};
    }
    return directions;
}

/// The directions of every third degree.
inline std::array<DiscDirection, 120> everyThirdDegree()
{
    return directionsAround<120>(0.99862953475457387, 0.052335956242943835);
}

/// The directions of every degree.
inline std::array<DiscDirection, 360> everyDegree()
{
    return directionsAround<360>(0.99984769515639124, 0.017452406437283512);
}
