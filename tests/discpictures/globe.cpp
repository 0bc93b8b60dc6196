#include "globe.h"

#include "draws.h"

#include <algorithm>
#include <cmath>

namespace
{

constexpr double degree = 0.017453292519943295;

double dot(const std::array<double, 3> &a, double x, double y, double z)
{
    return a[0] * x + a[1] * y + a[2] * z;
}

std::array<double, 3> anyDirection(Draws &draws)
{
    const double z = draws.between(-1.0, 1.0);
    const double angle = draws.between(0.0, 360.0) * degree;
    const double r = std::sqrt(1.0 - z * z);
    return {r * std::cos(angle), r * std::sin(angle), z};
}

Light tinted(const Light &a, const Light &b)
{
    return {a[0] * b[0], a[1] * b[1], a[2] * b[2]};
}

} // namespace

Cloudiness::Cloudiness(Draws &draws) : m_values(static_cast<std::size_t>(side) * side * side)
{
    for (float &value : m_values)
        value = static_cast<float>(draws.between(-1.0, 1.0));
}

double Cloudiness::lattice(double x, double y, double z) const
{
    const auto cell = [](double v) { return static_cast<int>(std::floor(v)); };
    const auto smooth = [](double t) { return t * t * (3.0 - 2.0 * t); };
    const int ix = cell(x);
    const int iy = cell(y);
    const int iz = cell(z);
    const double tx = smooth(x - ix);
    const double ty = smooth(y - iy);
    const double tz = smooth(z - iz);
    const auto value = [&](int dx, int dy, int dz) {
        const int u = (ix + dx) & (side - 1);
        const int v = (iy + dy) & (side - 1);
        const int w = (iz + dz) & (side - 1);
        const int cellNumber = (w * side + v) * side + u;
        return static_cast<double>(m_values[static_cast<std::size_t>(cellNumber)]);
    };
    const auto line = [&](int dy, int dz) { return value(0, dy, dz) * (1.0 - tx) + value(1, dy, dz) * tx; };
    const auto face = [&](int dz) { return line(0, dz) * (1.0 - ty) + line(1, dz) * ty; };
    return face(0) * (1.0 - tz) + face(1) * tz;
}

double Cloudiness::at(double x, double y, double z, int octaves) const
{
    double sum = 0.0;
    double height = 1.0;
    for (int i = 0; i < octaves; ++i) {
        sum += height * lattice(x + 7.3 * i, y + 3.1 * i, z + 11.7 * i);
        x *= 2.0;
        y *= 2.0;
        z *= 2.0;
        height *= 0.5;
    }
    return sum;
}

GlobePainter::GlobePainter(const Globe &globe, Draws &draws)
    : m_globe(globe)
    , m_pole(anyDirection(draws))
    , m_clouds(draws)
    , m_frequency(draws.between(1.5, 6.0))
    , m_cover(draws.between(-0.3, 0.4))
{
    const double phase = globe.phaseDeg * degree;
    const double angle = globe.sunAngleDeg * degree;
    m_sun = {std::sin(phase) * std::cos(angle), std::sin(phase) * std::sin(angle), std::cos(phase)};
    const int count = globe.surface == Surface::Craters ? draws.whole(5, 60) : 0;
    for (int i = 0; i < count; ++i) {
        const double size = 0.04 + 0.36 * std::pow(draws.unit(), 3.0);
        m_craters.push_back({anyDirection(draws), std::cos(size), draws.between(0.1, 0.6)});
    }
}

double GlobePainter::shade(double x, double y, double z) const
{
    const double toSun = std::max(dot(m_sun, x, y, z), 0.0);
    const double toViewer = std::max(z, 1e-3);
    const double u = m_globe.darkening;
    double light = 0.0;
    switch (m_globe.shading) {
    case Shading::Darkening:
        light = 1.0 - u * (1.0 - toViewer);
        if (m_globe.phaseDeg > 0.0)
            light *= std::min(toSun * 6.0, 1.0); // a hard terminator
        break;
    case Shading::Lambert:
        light = std::pow(toSun, 0.3 + 0.7 * u);
        break;
    case Shading::LunarDust:
        light = 2.0 * toSun / (toSun + toViewer);
        break;
    case Shading::Minnaert: {
        const double k = 0.5 + 0.5 * u;
        light = toSun <= 0.0 ? 0.0 : std::pow(toSun, k) * std::pow(toViewer, k - 1.0);
        break;
    }
    }
    light += m_globe.nightLight;
    light *= 1.0 + m_globe.limbGlow * std::pow(1.0 - toViewer, 6.0);
    return std::pow(std::min(light, 1.4), m_globe.gamma);
}

Light GlobePainter::cratered(double x, double y, double z) const
{
    double level = 1.0 + 0.25 * m_globe.texture * m_clouds.at(x * 3.0, y * 3.0, z * 3.0, 4);
    for (const Crater &crater : m_craters) {
        const double cosine = dot(crater.middle, x, y, z);
        if (cosine < crater.cosine)
            continue;
        const double depth =
            (cosine - crater.cosine) / (1.0 - crater.cosine); // 0 at the wall, 1 in the middle
        level *= 1.0 + m_globe.texture * (depth < 0.15 ? 0.4 : -crater.depth);
    }
    return m_globe.color * std::max(level, 0.1);
}

Light GlobePainter::ground(double x, double y, double z) const
{
    const double f = m_frequency;
    const double t = m_globe.texture;
    switch (m_globe.surface) {
    case Surface::Plain:
        return m_globe.color;
    case Surface::Mottled:
        return m_globe.color * std::max(1.0 + 0.6 * t * m_clouds.at(x * f, y * f, z * f, 5), 0.1);
    case Surface::Continents: {
        const double land = m_clouds.at(x * f * 0.6, y * f * 0.6, z * f * 0.6, 5);
        const double cloud = m_clouds.at(x * f + 40.0, y * f * 1.7, z * f + 9.0, 5);
        const Light base = land > 0.1 ? m_globe.second : m_globe.color;
        return mixed(base, grey(1.0), t * std::clamp((cloud - m_cover) * 2.0, 0.0, 1.0));
    }
    case Surface::Bands: {
        const double latitude = dot(m_pole, x, y, z) * 4.0 * f;
        const double wave = std::sin(latitude + 0.8 * m_clouds.at(x * f, y * f, z * f, 4));
        return mixed(m_globe.color, m_globe.second, t * (0.5 + 0.5 * wave));
    }
    case Surface::Craters:
        return cratered(x, y, z);
    }
    return m_globe.color;
}

Light GlobePainter::lightAt(double x, double y) const
{
    const double z = std::sqrt(std::max(1.0 - x * x - y * y, 0.0));
    return tinted(ground(x, y, z), grey(m_globe.brightness * shade(x, y, z)));
}

double GlobePainter::coverage(int column, int row) const
{
    const double dx = column + 0.5 - m_globe.centerX;
    const double dy = row + 0.5 - m_globe.centerY;
    const double r = std::sqrt(dx * dx + dy * dy);
    if (r < m_globe.radius - 1.0)
        return 1.0;
    if (r > m_globe.radius + 1.0)
        return 0.0;
    constexpr int fine = 6;
    int inside = 0;
    for (int j = 0; j < fine; ++j) {
        for (int i = 0; i < fine; ++i) {
            const double px = dx - 0.5 + (i + 0.5) / fine;
            const double py = dy - 0.5 + (j + 0.5) / fine;
            inside += px * px + py * py < m_globe.radius * m_globe.radius ? 1 : 0;
        }
    }
    return static_cast<double>(inside) / (fine * fine);
}

void GlobePainter::paint(LightPlane &plane, double halo, double haloDepth) const
{
    for (int row = 0; row < plane.height(); ++row) {
        for (int column = 0; column < plane.width(); ++column) {
            const double x = (column + 0.5 - m_globe.centerX) / m_globe.radius;
            const double y = (row + 0.5 - m_globe.centerY) / m_globe.radius;
            const double r = std::sqrt(x * x + y * y);
            Light sky = plane.at(column, row);
            if (halo > 0.0 && r > 0.9) {
                const double lit =
                    m_globe.phaseDeg <= 0.0 ? 1.0 : std::clamp(0.5 + dot(m_sun, x / r, y / r, 0.0), 0.0, 1.0);
                sky = sky + m_globe.color * (halo * lit * std::exp(-std::max(r - 1.0, 0.0) / haloDepth));
            }
            const double share = coverage(column, row);
            if (share <= 0.0) {
                plane.at(column, row) = sky;
                continue;
            }
            const double inward =
                r > 0.9995 ? 0.9995 / r : 1.0; // a pixel across the limb shows its inner part
            plane.at(column, row) = mixed(sky, lightAt(x * inward, y * inward), share);
        }
    }
}
