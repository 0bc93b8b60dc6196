#pragma once

#include <QImage>
#include <QSize>

#include <array>
#include <cstddef>
#include <vector>

class Draws;

/// Red, green and blue, 0 is black and 255 is the brightest that a photograph can show; may leave that range.
using Light = std::array<float, 3>;

Light operator+(const Light &a, const Light &b);
Light operator*(const Light &a, double factor);
/// From a (share 0) to b (share 1).
Light mixed(const Light &a, const Light &b, double share);
Light grey(double value);

/// A picture of light before a camera has seen it. Pixel (x, y) covers x to x + 1 and y to y + 1.
class LightPlane
{
public:
    explicit LightPlane(QSize size);

    int width() const { return m_size.width(); }
    int height() const { return m_size.height(); }
    /// Inside only.
    Light &at(int x, int y) { return m_lights[index(x, y)]; }
    const Light &at(int x, int y) const { return m_lights[index(x, y)]; }
    bool contains(int x, int y) const { return x >= 0 && y >= 0 && x < width() && y < height(); }

    /// Paints the part of a rectangle that lies inside.
    void fill(int left, int top, int right, int bottom, const Light &light);
    /// Adds a round spot of light that falls off as a bell: stars.
    void addSpot(double x, double y, double sigma, const Light &light);
    /// The blur of a lens, a bell with this standard deviation in pixels; 0 leaves it as it is.
    void blur(double sigma);
    /// What a camera makes of it: noise with a standard deviation, rounded, cut to 0 .. 255.
    QImage photograph(double noise, Draws &draws) const;

private:
    std::size_t index(int x, int y) const
    {
        return static_cast<std::size_t>(y) * static_cast<std::size_t>(m_size.width()) +
               static_cast<std::size_t>(x);
    }
    void blurLine(std::size_t first, std::size_t step, int count, const std::vector<float> &bell,
                  std::vector<Light> &line);

    QSize m_size;
    std::vector<Light> m_lights;
};
