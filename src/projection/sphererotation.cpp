#include "sphererotation.h"

#include "integers.h"

#include <cmath>

namespace projection
{

int columnShift(double angleDeg, int width)
{
    if (angleDeg > 360)
        angleDeg -= 360;
    if (angleDeg < -360)
        angleDeg += 360;
    return truncateToInt(static_cast<double>(width) / 360 * angleDeg);
}

SphereRotation::SphereRotation(int axis, int angleDeg, int width, int height)
    : m_axis(axis)
    , m_width(width)
    , m_height(height)
    , m_sine(std::sin(angleDeg * radiansPerDegree))
    , m_cosine(std::cos(angleDeg * radiansPerDegree))
{
    for (int x = 0; width <= longestAngleTable && x < width; ++x)
        m_columns.push_back(columnAngle(x));
    for (int y = 0; height <= longestAngleTable && y < height; ++y)
        m_rows.push_back(rowAngle(y));
}

CosineSine SphereRotation::columnAngle(int x) const
{
    return cosineSine(x * 360.0 / m_width * radiansPerDegree);
}

CosineSine SphereRotation::rowAngle(int y) const
{
    return cosineSine((y * 180.0 / m_height + (-90)) * radiansPerDegree);
}

MapPosition SphereRotation::source(int x, int y) const
{
    const CosineSine lambda = column(x);
    const CosineSine theta = row(y);
    const double X = lambda.cosine * theta.cosine;
    const double Y = lambda.sine * theta.cosine;
    const double Z = theta.sine;
    double rotatedX = X;
    double rotatedY = Y;
    double rotatedZ = Z;
    if (m_axis == 2) {
        rotatedX = m_cosine * X + m_sine * Y;
        rotatedY = m_cosine * Y - m_sine * X;
    } else if (m_axis == 3) {
        rotatedY = m_cosine * Y + m_sine * Z;
        rotatedZ = m_cosine * Z - m_sine * Y;
    } else {
        rotatedX = m_cosine * X + m_sine * Z;
        rotatedZ = m_cosine * Z - m_sine * X;
    }
    double longitude = std::atan(rotatedY / rotatedX) / radiansPerDegree;
    if (rotatedX < 0)
        longitude += 180;
    if (longitude < 0)
        longitude += 360;
    if (longitude > 360)
        longitude -= 360;
    const double colatitude =
        std::atan(rotatedZ / std::sqrt(rotatedX * rotatedX + rotatedY * rotatedY)) / radiansPerDegree + 90;
    // A direction on the axis has no longitude: NaN, which truncates to a column outside the map.
    return {truncateToInt(longitude * (m_width - 1) / 360), truncateToInt(colatitude * (m_height - 1) / 180)};
}

} // namespace projection
