#pragma once

#include "disccircle.h"

#include <vector>

/// The matrix of a least squares fit of level + x dx + y dy over directions (dx, dy).
struct DirectionMatrix {
    double n = 0.0, x = 0.0, y = 0.0, xx = 0.0, xy = 0.0, yy = 0.0;

    void add(const DiscDirection &d);
    /// 0 when the directions lie too close together for a fit.
    double determinant() const;
};

/// A value that changes evenly around a circle.
struct EvenLight {
    double level = 0.0;
    double slopeX = 0.0;
    double slopeY = 0.0;

    /// Of a value in this direction, 0 or more.
    double distance(const DiscDirection &d, double light) const;
};

/// A value in a direction.
struct DirectedLight {
    DiscDirection direction;
    double light;
};

/// The even change through values. Found three times over, each time without what is far from it; all 0 when there
/// are fewer than three directions.
EvenLight evenLightThrough(const std::vector<DirectedLight> &lights);

/// The median distance of values from an even change.
double medianDistance(const EvenLight &even, const std::vector<DirectedLight> &lights);

/// The upper median; 0 of nothing.
double upperMedian(std::vector<double> values);
