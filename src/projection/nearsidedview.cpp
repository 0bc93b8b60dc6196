#include "nearsidedview.h"

#include "integers.h"

#include <cmath>
#include <limits>

namespace projection
{

namespace
{

/// The lens compression near the disc edge: radii beyond the breakpoints are drawn inwards.
struct RadialCorrection {
    explicit RadialCorrection(double tangentToPixels)
        : begin(0.1 * tangentToPixels)
        , end(0.114 * tangentToPixels)
        , offset((end - begin) * 0.09999999999999998) // 1 - 0.9 as a double computes it
    {
    }

    double operator()(double rho) const
    {
        if (rho < begin)
            return rho;
        if (rho < end)
            return (rho - begin) * 0.9 + begin;
        return rho - offset;
    }

    double begin;
    double end;
    double offset;
};

} // namespace

NearSidedPerspective::NearSidedPerspective(const PerspectiveParameters &parameters) : m_parameters(parameters)
{
    const double alpha = std::asin(1 / parameters.distance); // apparent angular radius of the globe
    const double alphaDeg = alpha * 180 / pi;
    const double edgeRows = alphaDeg / (90.0 / parameters.photographHeight) * parameters.ratioY;
    m_tangentToPixels = parameters.radius / std::tan(alpha);
    const int marginRows =
        wrapToInt16(truncateToInt(parameters.margin * (parameters.ratioY * parameters.photographHeight)));
    const double edgeRow = marginRows + edgeRows;
    // From the surface, from inside and from behind nothing is seen, whatever the arc sine makes of it. A
    // first row that is no number, or beyond every number of a row, lies beyond the last one.
    const bool anyRow = parameters.distance > 1 && std::abs(edgeRow) <= std::numeric_limits<int>::max();
    m_edgeRow = anyRow ? truncateToInt(edgeRow) : std::numeric_limits<int>::max();
}

bool NearSidedPerspective::hasRow(int64_t k) const
{
    return k < std::numeric_limits<int>::max() &&
           m_parameters.ratioY * m_parameters.photographHeight - 1 >= static_cast<double>(k);
}

double NearSidedPerspective::radius(int64_t k) const
{
    const double rows = m_parameters.ratioY * m_parameters.photographHeight;
    const double phi = (90 - static_cast<double>(k) * 90 / rows) * radiansPerDegree;
    const double tangent = std::tan(std::atan(std::sin(phi) / (m_parameters.distance - std::cos(phi))));
    const double rho = tangent * m_tangentToPixels;
    return m_parameters.lens == Lens::None ? rho : RadialCorrection(m_tangentToPixels)(rho);
}

CosineSine NearSidedPerspective::direction(int x, int mapWidth) const
{
    const double columns = m_parameters.ratioX * m_parameters.photographWidth;
    const int c = mapWidth - 1 - x;
    return cosineSine((c * 360.0 / columns + (-180)) * radiansPerDegree);
}

std::vector<CosineSine> NearSidedPerspective::directions(int mapWidth) const
{
    std::vector<CosineSine> result;
    for (int x = 0; mapWidth <= longestAngleTable && x < mapWidth; ++x)
        result.push_back(direction(x, mapWidth));
    return result;
}

} // namespace projection
