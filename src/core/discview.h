#pragma once

#include <array>
#include <cstddef>
#include <vector>

class DiscPixels;

/// A picture of one value a pixel. Pixel (x, y) covers x to x + 1 and y to y + 1.
struct DiscPlane {
    int width = 0;
    int height = 0;
    std::vector<float> values;

    DiscPlane() = default;
    DiscPlane(int columns, int rows)
        : width(columns)
        , height(rows)
        , values(static_cast<std::size_t>(columns) * static_cast<std::size_t>(rows))
    {
    }
    std::size_t index(int x, int y) const
    {
        return static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x);
    }
    float at(int x, int y) const { return values[index(x, y)]; }
    float &at(int x, int y) { return values[index(x, y)]; }
};

/// How red, green and blue add up to the one value that tells disc and sky apart best; unit length.
using ColorAxis = std::array<float, 3>;

/// A photograph reduced for the search, captions and borders cut off.
struct DiscView {
    DiscPlane plane;    ///< at most 600 pixels a side; empty when the photograph is too narrow for a search
    int left = 0;       ///< pixels of the view that were cut off on the left
    int top = 0;        ///< and above
    double scale = 1.0; ///< photograph pixels for one of the view, 1 or more
    ColorAxis axis{};
};

DiscView reducedView(DiscPixels &photograph);
