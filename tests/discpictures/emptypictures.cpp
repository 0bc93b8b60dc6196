#include "emptypictures.h"

#include "draws.h"
#include "globe.h"

#include <algorithm>
#include <cmath>

namespace
{

constexpr double degree = 0.017453292519943295;

Light anyColor(Draws &draws, double low, double high)
{
    const double level = draws.between(low, high);
    Light result;
    for (float &channel : result)
        channel = static_cast<float>(level * draws.between(0.6, 1.2));
    return result;
}

template <typename Paint>
void paintEach(LightPlane &plane, const Paint &paint)
{
    for (int y = 0; y < plane.height(); ++y)
        for (int x = 0; x < plane.width(); ++x)
            plane.at(x, y) = paint(x, y);
}

QString paintClouds(LightPlane &plane, Draws &draws)
{
    const Cloudiness clouds(draws);
    const Light low = anyColor(draws, 0.0, 120.0);
    const Light high = anyColor(draws, 120.0, 250.0);
    const double scale = draws.between(2.0, 12.0) / plane.width();
    const double hardness = draws.between(0.5, 5.0);
    paintEach(plane, [&](int x, int y) {
        const double cover = clouds.at(x * scale, y * scale, 0.0, 6) * hardness + 0.5;
        return mixed(low, high, std::clamp(cover, 0.0, 1.0));
    });
    return "clouds";
}

QString paintGlow(LightPlane &plane, Draws &draws)
{
    const Light light = anyColor(draws, 60.0, 250.0);
    const double x0 = draws.between(0.1, 0.9) * plane.width();
    const double y0 = draws.between(0.1, 0.9) * plane.height();
    const double size = draws.between(0.15, 0.6) * plane.width();
    paintEach(plane, [&](int x, int y) {
        return light * std::exp(-((x - x0) * (x - x0) + (y - y0) * (y - y0)) / (2.0 * size * size));
    });
    return "soft glow";
}

QString paintCheckers(LightPlane &plane, Draws &draws)
{
    const Light a = anyColor(draws, 0.0, 120.0);
    const Light b = anyColor(draws, 100.0, 250.0);
    const double side = draws.between(0.02, 0.2) * plane.width();
    const double angle = draws.between(0.0, 90.0) * degree;
    const bool stripes = draws.happens(0.3);
    paintEach(plane, [&](int x, int y) {
        const double u = std::floor((x * std::cos(angle) + y * std::sin(angle)) / side);
        const double v = stripes ? 0.0 : std::floor((y * std::cos(angle) - x * std::sin(angle)) / side);
        return std::fmod(std::fabs(u + v), 2.0) < 0.5 ? a : b;
    });
    return stripes ? "stripes" : "checkers";
}

QString paintLand(LightPlane &plane, Draws &draws)
{
    const Cloudiness clouds(draws);
    const Light zenith = anyColor(draws, 80.0, 200.0);
    const Light horizon = anyColor(draws, 150.0, 250.0);
    const double level = draws.between(0.35, 0.7) * plane.height();
    const double height = draws.between(0.02, 0.3) * plane.height();
    const double roughness = draws.between(1.0, 6.0) / plane.width();
    const double cloudiness = draws.between(0.0, 0.6);
    const int ranges = draws.whole(1, 4);
    paintEach(plane, [&](int x, int y) {
        const double cloud = clouds.at(x * roughness * 2.0, y * roughness * 5.0, 50.0, 4);
        return mixed(zenith, horizon, y / level) + grey(60.0 * cloudiness * std::max(cloud, 0.0));
    });
    for (int i = 0; i < ranges; ++i) {
        const Light ground = anyColor(draws, 20.0, 160.0);
        const double base = level + i * 0.1 * plane.height();
        for (int x = 0; x < plane.width(); ++x) {
            const double ridge = base - height * clouds.at(x * roughness, 3.0 * i, 0.0, 5);
            for (int y = std::max(0, static_cast<int>(ridge)); y < plane.height(); ++y)
                plane.at(x, y) = ground * (1.0 + 0.3 * clouds.at(x * 0.05, y * 0.1, 5.0 * i, 3));
        }
    }
    return "land";
}

QString paintPage(LightPlane &plane, Draws &draws)
{
    plane.fill(0, 0, plane.width(), plane.height(), grey(draws.between(180.0, 255.0)));
    const int line = draws.whole(8, 40);
    for (int y = line; y + line < plane.height(); y += line * 2)
        addWriting(plane, line, y, line, plane.width() - line, grey(draws.between(0.0, 80.0)), draws);
    return "page";
}

QString paintBoxes(LightPlane &plane, Draws &draws)
{
    plane.fill(0, 0, plane.width(), plane.height(), anyColor(draws, 0.0, 200.0));
    for (int i = draws.whole(1, 25); i > 0; --i) {
        const int left = draws.whole(-50, plane.width());
        const int top = draws.whole(-50, plane.height());
        plane.fill(left, top, left + draws.whole(10, plane.width() / 2),
                   top + draws.whole(10, plane.height() / 2), anyColor(draws, 0.0, 250.0));
    }
    return "boxes";
}

/// A flat ellipse: a galaxy, a plate seen from the side.
QString paintEllipse(LightPlane &plane, Draws &draws)
{
    const Light light = anyColor(draws, 100.0, 250.0);
    const double angle = draws.between(0.0, 180.0) * degree;
    const double half = draws.between(0.1, 0.45) * std::min(plane.width(), plane.height());
    const double other = half * draws.between(0.15, 0.75);
    const bool hard = draws.happens(0.5);
    paintEach(plane, [&](int x, int y) {
        const double dx = x - 0.5 * plane.width();
        const double dy = y - 0.5 * plane.height();
        const double u = (dx * std::cos(angle) + dy * std::sin(angle)) / half;
        const double v = (dy * std::cos(angle) - dx * std::sin(angle)) / other;
        const double r = u * u + v * v;
        return hard ? (r < 1.0 ? light : grey(0.0)) : light * std::exp(-2.0 * r);
    });
    return "ellipse";
}

/// Ground seen from above, as a probe sees it: craters everywhere and no limb.
QString paintGround(LightPlane &plane, Draws &draws)
{
    Globe ground;
    ground.centerX = 0.5 * plane.width();
    ground.centerY = 0.5 * plane.height();
    ground.radius = 1.5 * std::max(plane.width(), plane.height());
    ground.surface = draws.happens(0.5) ? Surface::Mottled : Surface::Continents;
    ground.texture = draws.between(0.3, 1.0);
    ground.brightness = draws.between(100.0, 220.0);
    ground.second = {0.5F, 0.7F, 0.4F};
    GlobePainter(ground, draws).paint(plane, 0.0, 1.0);
    return "ground";
}

} // namespace

void addWriting(LightPlane &plane, int left, int top, int height, int right, const Light &ink, Draws &draws)
{
    const int pen = std::max(1, height / 7);
    const int width = 4 * pen;
    for (int x = left; x + width < right; x += width + 2 * pen) {
        if (draws.happens(0.15))
            continue; // a blank
        const int strokes = draws.whole(1, 127);
        const int middle = top + height / 2 - pen / 2;
        const auto stroke = [&](int bit, int x1, int y1, int x2, int y2) {
            if ((strokes >> bit) & 1)
                plane.fill(x1, y1, x2, y2, ink);
        };
        stroke(0, x, top, x + width - 1, top + pen - 1);
        stroke(1, x, middle, x + width - 1, middle + pen - 1);
        stroke(2, x, top + height - pen, x + width - 1, top + height - 1);
        stroke(3, x, top, x + pen - 1, middle);
        stroke(4, x + width - pen, top, x + width - 1, middle);
        stroke(5, x, middle, x + pen - 1, top + height - 1);
        stroke(6, x + width - pen, middle, x + width - 1, top + height - 1);
    }
}

void addStars(LightPlane &plane, int count, Draws &draws)
{
    for (int i = 0; i < count; ++i) {
        const double size = draws.happens(0.05) ? draws.between(1.0, 3.0) : draws.between(0.4, 1.0);
        const double light = 30.0 + 400.0 * std::pow(draws.unit(), 3.0);
        const Light color = {1.0F, static_cast<float>(draws.between(0.8, 1.0)),
                             static_cast<float>(draws.between(0.7, 1.1))};
        const double x = draws.unit() * plane.width();
        const double y = draws.unit() * plane.height();
        plane.addSpot(x, y, size, color * light);
    }
}

void addSlope(LightPlane &plane, double angleDeg, double rise)
{
    const double perPixel = rise / std::max(plane.width(), plane.height());
    const double dx = std::cos(angleDeg * degree) * perPixel;
    const double dy = std::sin(angleDeg * degree) * perPixel;
    paintEach(plane, [&](int x, int y) {
        return plane.at(x, y) + grey(dx * (x - 0.5 * plane.width()) + dy * (y - 0.5 * plane.height()));
    });
}

QString paintEmptyPicture(LightPlane &plane, Draws &draws)
{
    switch (draws.whole(0, 12)) {
    case 0:
        addStars(plane, draws.whole(20, 1500), draws);
        return "stars";
    case 1:
    case 2:
        return paintClouds(plane, draws);
    case 3:
        plane.fill(0, 0, plane.width(), plane.height(), anyColor(draws, 60.0, 180.0));
        addSlope(plane, draws.between(0.0, 360.0), draws.between(20.0, 200.0));
        return "slope";
    case 4:
        return paintGlow(plane, draws);
    case 5:
        return paintCheckers(plane, draws);
    case 6:
        plane.fill(0, 0, plane.width(), plane.height(), anyColor(draws, 0.0, 250.0));
        return "one colour";
    case 7:
    case 8:
        return paintLand(plane, draws);
    case 9:
        return paintPage(plane, draws);
    case 10:
        return paintBoxes(plane, draws);
    case 11:
        return paintEllipse(plane, draws);
    default:
        return paintGround(plane, draws);
    }
}
