#pragma once

#include "discview.h"

#include <vector>

/// A place where the light changes most, in view pixels.
struct EdgePoint {
    float x;
    float y;
    float normalX; ///< unit vector towards the brighter side
    float normalY;
    int chain; ///< which of the chains it belongs to
};

/// The edges of a view: points in chains that run on without a corner. Short chains (noise, stars) are left out.
struct DiscEdges {
    int width = 0;
    int height = 0;
    std::vector<EdgePoint> points; ///< those of a chain stand next to each other, the longest chain first
    std::vector<int>
        chainStarts;      ///< index of the first point of each chain, and the number of points at the end
    std::vector<int> map; ///< for each pixel of the view the index of its point, or -1

    /// The index of the point in a pixel of the view, or -1.
    int indexAt(int x, int y) const
    {
        return map[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                   static_cast<std::size_t>(x)];
    }
    /// The point in the pixel under a position, which may lie anywhere, or none.
    const EdgePoint *near(double x, double y) const
    {
        if (!(x >= 0.0 && y >= 0.0 && x < width && y < height))
            return nullptr;
        const int index = indexAt(static_cast<int>(x), static_cast<int>(y));
        return index < 0 ? nullptr : &points[static_cast<std::size_t>(index)];
    }
};

DiscEdges findEdges(const DiscPlane &plane);
