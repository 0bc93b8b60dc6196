#pragma once

#include "gather.h"
#include "imageview.h"
#include "nearsidedview.h"
#include "premultiply.h"

#include <cstdint>
#include <vector>

// Which photograph pixel a direction and a radius of the perspective show: the truncated product, in its low
// 16 bits, added to the disc centre.

namespace projection
{

/// A pixel of the photograph by coordinates. May lie outside.
struct SamplePosition {
    int64_t x;
    int64_t y;
};

/// For any parameters, direction and radius.
SamplePosition sampleAnywhere(const PerspectiveParameters &parameters, CosineSine direction, double radius);

/// What may be known of a row's samples before they are taken.
enum class SampleBounds {
    Inside,  ///< no offset wraps, no sum overflows an int, and all samples lie in the photograph
    Clipped, ///< no offset wraps, no sum overflows an int, and some samples may lie outside
    Unknown  ///< anything may happen: sampleAnywhere() alone is right
};

/// @param directions     of all columns
/// @param largestRadius  upper bound of |radius|, pixels
SampleBounds boundsOfSamples(const PerspectiveParameters &parameters, const ConstImageView &photograph,
                             const std::vector<CosineSine> &directions, double largestRadius);

/// Turns direction and radius into the number of the photograph pixel shown. For bounded samples only.
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

    int32_t operator()(CosineSine direction, double radius) const
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
                 const std::vector<CosineSine> &directions, double radius, uint32_t *line);

/// Number of samples of a row that pass the bounds of the photograph; a column one beyond the right edge
/// passes.
int64_t countRowSamples(const NearSidedPerspective &perspective, double radius, int mapWidth);

} // namespace projection
