#include "lightplane.h"

#include "draws.h"

#include <algorithm>
#include <cmath>

Light operator+(const Light &a, const Light &b)
{
    return {a[0] + b[0], a[1] + b[1], a[2] + b[2]};
}

Light operator*(const Light &a, double factor)
{
    const auto f = static_cast<float>(factor);
    return {a[0] * f, a[1] * f, a[2] * f};
}

Light mixed(const Light &a, const Light &b, double share)
{
    return a * (1.0 - share) + b * share;
}

Light grey(double value)
{
    const auto v = static_cast<float>(value);
    return {v, v, v};
}

LightPlane::LightPlane(QSize size)
    : m_size(size)
    , m_lights(static_cast<std::size_t>(size.width()) * static_cast<std::size_t>(size.height()), Light{})
{
}

void LightPlane::fill(int left, int top, int right, int bottom, const Light &light)
{
    for (int y = std::max(top, 0); y <= std::min(bottom, height() - 1); ++y)
        for (int x = std::max(left, 0); x <= std::min(right, width() - 1); ++x)
            at(x, y) = light;
}

void LightPlane::addSpot(double x, double y, double sigma, const Light &light)
{
    const int reach = static_cast<int>(std::ceil(3.0 * sigma)) + 1;
    const int column = static_cast<int>(std::floor(x));
    const int row = static_cast<int>(std::floor(y));
    for (int v = row - reach; v <= row + reach; ++v) {
        for (int u = column - reach; u <= column + reach; ++u) {
            if (!contains(u, v))
                continue;
            const double dx = u + 0.5 - x;
            const double dy = v + 0.5 - y;
            at(u, v) = at(u, v) + light * std::exp(-(dx * dx + dy * dy) / (2.0 * sigma * sigma));
        }
    }
}

void LightPlane::blurLine(std::size_t first, std::size_t step, int count, const std::vector<float> &bell,
                          std::vector<Light> &line)
{
    const int reach = static_cast<int>(bell.size()) - 1;
    for (int i = 0; i < count; ++i)
        line[static_cast<std::size_t>(i)] = m_lights[first + step * static_cast<std::size_t>(i)];
    const auto lightAt = [&](int i) -> const Light & {
        return line[static_cast<std::size_t>(std::clamp(i, 0, count - 1))];
    };
    for (int i = 0; i < count; ++i) {
        Light sum = lightAt(i) * static_cast<double>(bell[0]);
        for (int k = 1; k <= reach; ++k)
            sum = sum +
                  (lightAt(i - k) + lightAt(i + k)) * static_cast<double>(bell[static_cast<std::size_t>(k)]);
        m_lights[first + step * static_cast<std::size_t>(i)] = sum;
    }
}

void LightPlane::blur(double sigma)
{
    if (sigma <= 0.0)
        return;
    std::vector<float> bell(static_cast<std::size_t>(std::ceil(3.5 * sigma)) + 1);
    double total = 0.0;
    for (std::size_t k = 0; k < bell.size(); ++k) {
        const auto distance = static_cast<double>(k);
        bell[k] = static_cast<float>(std::exp(-distance * distance / (2.0 * sigma * sigma)));
        total += static_cast<double>(bell[k]) * (k == 0 ? 1.0 : 2.0);
    }
    for (float &weight : bell)
        weight = static_cast<float>(static_cast<double>(weight) / total);
    std::vector<Light> line(static_cast<std::size_t>(std::max(width(), height())));
    for (int y = 0; y < height(); ++y)
        blurLine(index(0, y), 1, width(), bell, line);
    for (int x = 0; x < width(); ++x)
        blurLine(index(x, 0), static_cast<std::size_t>(width()), height(), bell, line);
}

QImage LightPlane::photograph(double noise, Draws &draws) const
{
    QImage result(m_size, QImage::Format_RGB32);
    const auto channel = [&](float light) {
        const double value = static_cast<double>(light) + (noise > 0.0 ? noise * draws.quickNoise() : 0.0);
        return static_cast<int>(std::clamp(value + 0.5, 0.0, 255.0));
    };
    for (int y = 0; y < height(); ++y) {
        auto *row = reinterpret_cast<QRgb *>(result.scanLine(y));
        for (int x = 0; x < width(); ++x) {
            const Light &light = at(x, y);
            const int red = channel(light[0]);
            const int green = channel(light[1]);
            const int blue = channel(light[2]);
            row[x] = qRgb(red, green, blue);
        }
    }
    return result;
}
