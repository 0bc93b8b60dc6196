#pragma once

#include "gather.h"
#include "imageview.h"
#include "premultiply.h"

#include <cstdint>
#include <vector>

/// The circle constant of every conversion between degrees and radians, and the radians of one degree.
constexpr double pi = 3.141592653589793;
constexpr double radiansPerDegree = pi / 180;

/// The most columns or rows that get a table: no map that people use has more, and a table for one of a
/// thousand million columns and a single row would need more memory than the map.
constexpr int largestTable = 32767;

/// Where a disc lies in a photograph and how large the map is: everything the projection step computes with.
/// Lengths are pixels; formulas and letters: docs/projection.md.
struct PerspectiveParameters {
    int centerX = 0;
    int centerY = 0;
    int radius = 0;
    double distance = 100.0; ///< viewpoint to globe centre, globe radii
    double ratioX = 2.0;     ///< map columns of 360 degrees per photograph column
    double ratioY = 2.0;     ///< map rows of 90 degrees per photograph row
    double margin = 0.01;    ///< safety margin at the visible edge, fraction of the rows of 90 degrees
    int photographWidth = 0;
    int photographHeight = 0;
};

/// Cosine and sine of a map column's longitude: the direction in which its samples lie from the disc centre.
struct Direction {
    double cosine;
    double sine;
};

/// Which photograph pixel a column and row of the work map show: per column a direction, per row a radius,
/// both in the doubles of the formulas; a sample is the truncated product, in the low 16 bits, added to the
/// centre.
class NearSidedPerspective
{
public:
    explicit NearSidedPerspective(const PerspectiveParameters &parameters);

    /// First row painted, counted upwards from the equator of the map. Any int, if hasRow() at all.
    int64_t firstRow() const { return m_firstRow; }
    /// Whether row k lies within the quarter circle; rows run from firstRow() while this holds.
    bool hasRow(int64_t k) const;
    /// Radius of row k in the photograph, pixels before truncation. May be negative, huge or NaN.
    double radius(int64_t k) const;
    /// Direction of a map's column x, counted from the left.
    Direction direction(int x, int mapWidth) const;
    /// Directions of all columns of a map; of none if they are more than largestTable.
    std::vector<Direction> directions(int mapWidth) const;

    const PerspectiveParameters &parameters() const { return m_parameters; }

private:
    PerspectiveParameters m_parameters;
    double m_tangentToPixels = 0.0;
    int64_t m_firstRow = 0;
};

/// Turns direction and radius into the number of the photograph pixel shown, for a disc whose samples are
/// bounded: the low 16 bits are the whole number, and no sum overflows an int.
/// @tparam Clipped  samples may lie outside the photograph; they give GatherBatch::none
template <bool Clipped>
class BoundedSampler
{
public:
    BoundedSampler(const PerspectiveParameters &parameters, const ConstImageView &photograph)
        : m_stride(static_cast<int32_t>(photograph.stride))
        , m_width(photograph.width)
        , m_height(photograph.height)
        , m_centerX(parameters.centerX)
        , m_centerY(parameters.centerY)
        , m_centre(Clipped ? 0 : parameters.centerY * m_stride + parameters.centerX)
    {
    }

    int32_t operator()(Direction direction, double radius) const
    {
        const int dx = static_cast<int>(direction.cosine * radius);
        const int dy = static_cast<int>(direction.sine * radius);
        if constexpr (!Clipped)
            return m_centre + dy * m_stride + dx;
        const int x = m_centerX + dx;
        const int y = m_centerY + dy;
        const bool inside = (static_cast<uint32_t>(x) < static_cast<uint32_t>(m_width)) &
                            (static_cast<uint32_t>(y) < static_cast<uint32_t>(m_height));
        // Outside, the product may wrap: unsigned arithmetic defines it.
        const auto index = static_cast<int32_t>(static_cast<uint32_t>(y) * static_cast<uint32_t>(m_stride) +
                                                static_cast<uint32_t>(x));
        return inside ? index : GatherBatch::none;
    }

private:
    int32_t m_stride;
    int32_t m_width;
    int32_t m_height;
    int32_t m_centerX;
    int32_t m_centerY;
    int32_t m_centre;
};

/// What may be asked of a row's samples before they are taken.
enum class Samples {
    Inside,  ///< bounded, and all of them lie in the photograph
    Clipped, ///< bounded, some may lie outside
    Wrapping ///< anything may happen: sampleAnywhere() alone is right
};
/// @param largestRadius  upper bound of |radius|, pixels
Samples samplesWithin(const PerspectiveParameters &parameters, const ConstImageView &photograph,
                      const std::vector<Direction> &directions, double largestRadius);
/// The photograph pixel shown, for any parameters, direction and radius; may lie outside.
struct Sample {
    int64_t x;
    int64_t y;
};
Sample sampleAnywhere(const PerspectiveParameters &parameters, Direction direction, double radius);

/// Calls use(finish) with the function that turns a pixel of the photograph into one of a premultiplied
/// canvas.
template <typename Use>
void withPixelFinish(const ConstImageView &photograph, Use use)
{
    if (const uint32_t opaque = photograph.opaqueBits)
        use([opaque](uint32_t argb) { return argb | opaque; });
    else
        use([](uint32_t argb) { return premultiplied(argb); });
}

/// Paints one row of the work map on a premultiplied canvas; a sample outside the photograph leaves its
/// pixel.
/// @param radius  of the row; any double
/// @param line    the canvas row, one pixel for each direction
void paintMapRow(const PerspectiveParameters &parameters, const ConstImageView &photograph,
                 const std::vector<Direction> &directions, double radius, uint32_t *line);

/// Number of samples of a row that pass the bounds of convertImage; a column one beyond the right edge
/// passes.
int64_t countRowSamples(const NearSidedPerspective &perspective, double radius, int mapWidth);
