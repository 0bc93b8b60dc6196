#include "discpictures.h"

#include "beacons.h"
#include "draws.h"
#include "emptypictures.h"
#include "globe.h"
#include "lightplane.h"

#include <QBuffer>
#include <QByteArray>

#include <algorithm>
#include <cmath>

namespace
{

constexpr double degree = 0.017453292519943295;

QSize anySize(Draws &draws, int longestSide)
{
    constexpr double ratios[] = {1.0, 4.0 / 3.0, 1.5, 16.0 / 9.0, 1.25, 2.0};
    const double ratio = ratios[draws.whole(0, 5)];
    const double share = draws.unit();
    const double side = 300.0 * std::pow(longestSide / 300.0, share * share); // small ones are the most
    const int longer = std::max(300, static_cast<int>(side));
    const int shorter = std::max(200, static_cast<int>(longer / ratio));
    return draws.happens(0.25) ? QSize(shorter, longer) : QSize(longer, shorter);
}

/// Ground colours: grey, rust, sea and land, cream and brown, ice, orange, anything.
void chooseColors(Globe &globe, Draws &draws)
{
    constexpr Light pairs[][2] = {
        {{1.0F, 1.0F, 1.0F}, {0.6F, 0.6F, 0.6F}},     {{1.0F, 0.65F, 0.4F}, {0.5F, 0.3F, 0.2F}},
        {{0.25F, 0.45F, 0.9F}, {0.45F, 0.6F, 0.3F}},  {{1.0F, 0.93F, 0.8F}, {0.7F, 0.5F, 0.35F}},
        {{0.6F, 0.85F, 1.0F}, {0.45F, 0.65F, 0.95F}}, {{1.0F, 0.7F, 0.2F}, {0.9F, 0.4F, 0.1F}}};
    const int choice = draws.whole(0, 6);
    if (choice < 6) {
        globe.color = pairs[choice][0];
        globe.second = pairs[choice][1];
        return;
    }
    for (int i = 0; i < 3; ++i) {
        globe.color[static_cast<std::size_t>(i)] = static_cast<float>(draws.between(0.2, 1.0));
        globe.second[static_cast<std::size_t>(i)] = static_cast<float>(draws.between(0.2, 1.0));
    }
}

Globe anyGlobe(Draws &draws)
{
    Globe globe;
    globe.surface = static_cast<Surface>(draws.whole(0, 4));
    globe.texture = draws.between(0.2, 1.0);
    globe.brightness = draws.between(110.0, 250.0);
    globe.gamma = draws.happens(0.4) ? 1.0 / 2.2 : 1.0;
    globe.darkening = draws.between(0.0, 0.9);
    globe.shading = draws.happens(0.7) ? Shading::Darkening : static_cast<Shading>(draws.whole(0, 3));
    chooseColors(globe, draws);
    return globe;
}

/// The share of the circle's line that lies inside the picture.
double shareInside(const Globe &globe, QSize size)
{
    int inside = 0;
    for (int i = 0; i < 720; ++i) {
        const double x = globe.centerX + globe.radius * std::cos(i * 0.5 * degree);
        const double y = globe.centerY + globe.radius * std::sin(i * 0.5 * degree);
        inside += x >= 0.0 && y >= 0.0 && x <= size.width() && y <= size.height() ? 1 : 0;
    }
    return inside / 720.0;
}

/// Between 15 % and 97 % of the shorter side, inside.
void placeWhole(Globe &globe, QSize size, Draws &draws)
{
    const int shorter = std::min(size.width(), size.height());
    globe.radius = 0.5 * shorter * draws.between(0.15, 0.97);
    if (draws.happens(0.5))
        globe.radius = 0.5 * shorter * draws.between(0.5, 0.97);
    globe.centerX = draws.between(globe.radius + 2.0, size.width() - globe.radius - 2.0);
    globe.centerY = draws.between(globe.radius + 2.0, size.height() - globe.radius - 2.0);
}

void placeCut(Globe &globe, QSize size, Draws &draws)
{
    const int shorter = std::min(size.width(), size.height());
    for (;;) {
        globe.radius = 0.5 * shorter * draws.between(0.3, 1.4);
        globe.centerX = draws.between(0.0, size.width());
        globe.centerY = draws.between(0.0, size.height());
        const double share = shareInside(globe, size);
        if (share >= 0.6 && share <= 0.95)
            return;
    }
}

void paintDarkSky(LightPlane &plane, Draws &draws)
{
    const double level = draws.happens(0.4) ? 0.0 : draws.between(0.0, 25.0);
    plane.fill(0, 0, plane.width(), plane.height(), grey(level));
    if (draws.happens(0.6))
        addStars(plane, draws.whole(5, 400), draws);
}

/// The sky's middle is 25 to 170 and at least 40 from the disc's brightness.
void paintBrightSky(LightPlane &plane, const Globe &globe, Draws &draws)
{
    double level = 0.0;
    do
        level = draws.between(25.0, 170.0);
    while (std::abs(level - globe.brightness) < 40.0);
    Light sky = grey(level);
    if (draws.happens(0.4))
        for (float &channel : sky)
            channel *= static_cast<float>(draws.between(0.75, 1.1));
    plane.fill(0, 0, plane.width(), plane.height(), sky);
    if (draws.happens(0.6))
        addSlope(plane, draws.between(0.0, 360.0), draws.between(10.0, 90.0));
    if (draws.happens(0.3))
        addStars(plane, draws.whole(5, 100), draws);
}

/// @return the recipe. A caption may hide the uppermost or lowest tenth of the disc.
QString addMarks(LightPlane &plane, Draws &draws)
{
    const int shorter = std::min(plane.width(), plane.height());
    QString recipe;
    if (draws.happens(0.65)) {
        const int height = std::max(8, static_cast<int>(draws.between(0.04, 0.12) * plane.height()));
        const bool top = draws.happens(0.3);
        const int first = top ? 0 : plane.height() - height;
        const double paper = draws.happens(0.5) ? draws.between(0.0, 60.0) : draws.between(150.0, 255.0);
        if (draws.happens(0.75))
            plane.fill(0, first, plane.width(), first + height - 1, grey(paper));
        const int letters = std::max(6, static_cast<int>(height * draws.between(0.4, 0.8)));
        addWriting(plane, draws.whole(2, plane.width() / 3), first + (height - letters) / 2, letters,
                   draws.whole(plane.width() / 2, plane.width() - 2), grey(paper < 100.0 ? 240.0 : 10.0),
                   draws);
        recipe = " caption";
    }
    if (recipe.isEmpty() || draws.happens(0.3)) {
        const int inset = draws.happens(0.5) ? 0 : draws.whole(0, shorter / 25);
        const int pen = draws.whole(1, std::max(2, shorter / 120));
        const Light ink = grey(draws.between(80.0, 255.0));
        const int right = plane.width() - 1 - inset;
        const int bottom = plane.height() - 1 - inset;
        plane.fill(inset, inset, right, inset + pen - 1, ink);
        plane.fill(inset, bottom - pen + 1, right, bottom, ink);
        plane.fill(inset, inset, inset + pen - 1, bottom, ink);
        plane.fill(right - pen + 1, inset, right, bottom, ink);
        recipe += " border";
    }
    return recipe;
}

/// Thin elliptic rings around the globe: those of a planet.
void addRings(LightPlane &plane, const Globe &globe, Draws &draws)
{
    const double angle = draws.between(0.0, 180.0) * degree;
    const double flatness = draws.between(0.08, 0.4);
    const double inner = draws.between(1.2, 1.5);
    const double outer = inner + draws.between(0.2, 0.8);
    for (int y = 0; y < plane.height(); ++y) {
        for (int x = 0; x < plane.width(); ++x) {
            const double dx = (x + 0.5 - globe.centerX) / globe.radius;
            const double dy = (y + 0.5 - globe.centerY) / globe.radius;
            const double u = dx * std::cos(angle) + dy * std::sin(angle);
            const double v = (dy * std::cos(angle) - dx * std::sin(angle)) / flatness;
            const double r = std::sqrt(u * u + v * v);
            const bool behind = v < 0.0 && dx * dx + dy * dy < 1.0;
            if (r > inner && r < outer && !behind)
                plane.at(x, y) = globe.color * (0.6 * globe.brightness * (0.8 + 0.2 * std::sin(r * 40.0)));
        }
    }
}

/// The corners of a picture are darker than its middle.
void dimCorners(LightPlane &plane, double loss)
{
    const double w = 0.5 * plane.width();
    const double h = 0.5 * plane.height();
    for (int y = 0; y < plane.height(); ++y) {
        for (int x = 0; x < plane.width(); ++x) {
            const double r = ((x - w) * (x - w) + (y - h) * (y - h)) / (w * w + h * h);
            plane.at(x, y) = plane.at(x, y) * (1.0 - loss * r);
        }
    }
}

QImage throughJpeg(const QImage &image, int quality)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "JPEG", quality);
    return QImage::fromData(bytes, "JPEG").convertToFormat(QImage::Format_RGB32);
}

/// Lens, sensor and file: blur up to 2 pixels, noise up to 10, JPEG from quality 60.
QImage taken(LightPlane &plane, QString &recipe, Draws &draws)
{
    const double blur = draws.happens(0.3) ? 0.0 : draws.between(0.3, 2.0);
    const double noise = draws.happens(0.25) ? 0.0 : draws.between(0.5, 10.0);
    const int quality = draws.happens(0.4) ? 0 : draws.whole(60, 98);
    plane.blur(blur);
    recipe += QString(" blur %1 noise %2 quality %3").arg(blur, 0, 'f', 1).arg(noise, 0, 'f', 1).arg(quality);
    const QImage image = plane.photograph(noise, draws);
    return quality > 0 ? throughJpeg(image, quality) : image;
}

void turnToPhase(Globe &globe, double phaseDeg, Draws &draws)
{
    globe.phaseDeg = phaseDeg;
    globe.sunAngleDeg = draws.between(0.0, 360.0);
    globe.nightLight = draws.happens(0.7) ? 0.0 : draws.between(0.0, 0.05);
    globe.shading = static_cast<Shading>(draws.whole(0, 3));
}

struct Halo {
    double light = 0.0;
    double depth = 0.02;
};

Halo makeOdd(LightPlane &plane, Globe &globe, QString &recipe, Draws &draws)
{
    Halo halo;
    switch (draws.whole(0, 3)) {
    case 0:
        halo = {globe.brightness * draws.between(0.05, 0.4), draws.between(0.01, 0.06)};
        recipe += " halo";
        break;
    case 1:
        addRings(plane, globe, draws);
        recipe += " rings";
        break;
    case 2:
        globe.limbGlow = draws.between(0.1, 0.5);
        recipe += " bright rim";
        break;
    default:
        turnToPhase(globe, draws.between(95.0, 115.0), draws);
        recipe += " thin crescent";
        break;
    }
    return halo;
}

/// Chooses place, light and sky for the kind, and paints the sky.
Halo prepare(PictureKind kind, LightPlane &plane, Globe &globe, QString &recipe, Draws &draws)
{
    const QSize size(plane.width(), plane.height());
    if (kind == PictureKind::Cut)
        placeCut(globe, size, draws);
    else
        placeWhole(globe, size, draws);
    if (kind == PictureKind::Phase)
        turnToPhase(globe, draws.between(35.0, 95.0), draws);
    else if (draws.happens(0.3))
        turnToPhase(globe, draws.between(0.0, 25.0), draws);
    if (kind == PictureKind::BrightSky || (kind != PictureKind::Phase && draws.happens(0.1)))
        paintBrightSky(plane, globe, draws);
    else
        paintDarkSky(plane, draws);
    return kind == PictureKind::Odd ? makeOdd(plane, globe, recipe, draws) : Halo();
}

} // namespace

QString nameOf(PictureKind kind)
{
    switch (kind) {
    case PictureKind::Whole:
        return "whole disc";
    case PictureKind::Marked:
        return "caption or border";
    case PictureKind::BrightSky:
        return "grey or sloping sky";
    case PictureKind::Cut:
        return "cut by the frame";
    case PictureKind::Phase:
        return "phase 35 to 95";
    case PictureKind::NoDisc:
        return "no disc";
    case PictureKind::Odd:
        break;
    }
    return "odd ones";
}

DiscPicture discPicture(PictureKind kind, quint32 seed, int longestSide)
{
    Draws draws(seed * 8U + static_cast<quint32>(kind));
    LightPlane plane(anySize(draws, longestSide));
    DiscPicture result;
    if (kind == PictureKind::NoDisc) {
        result.recipe = paintEmptyPicture(plane, draws);
        if (draws.happens(0.2))
            result.recipe += addMarks(plane, draws);
        result.image = taken(plane, result.recipe, draws);
        return result;
    }
    Globe globe = anyGlobe(draws);
    const Halo halo = prepare(kind, plane, globe, result.recipe, draws);
    GlobePainter(globe, draws).paint(plane, halo.light, halo.depth);
    if (kind == PictureKind::Marked)
        result.recipe += addMarks(plane, draws);
    if (kind == PictureKind::Odd && draws.happens(0.3))
        dimCorners(plane, draws.between(0.1, 0.5));
    result.recipe += QString(" surface %1 shading %2 u %3 phase %4 light %5")
                         .arg(static_cast<int>(globe.surface))
                         .arg(static_cast<int>(globe.shading))
                         .arg(globe.darkening, 0, 'f', 2)
                         .arg(globe.phaseDeg, 0, 'f', 0)
                         .arg(globe.brightness, 0, 'f', 0);
    result.image = taken(plane, result.recipe, draws);
    result.hasDisc = true;
    result.centerX = globe.centerX;
    result.centerY = globe.centerY;
    result.radius = globe.radius;
    return result;
}

DiscSeries::DiscSeries(quint32 seed) : m_seed(seed)
{
}

DiscPicture DiscSeries::frame(int number) const
{
    Draws look(m_seed);
    LightPlane plane(QSize(1280, 960));
    Globe globe;
    globe.surface = Surface::Continents;
    globe.shading = Shading::Lambert;
    globe.color = {0.25F, 0.45F, 0.9F};
    globe.second = {0.45F, 0.6F, 0.3F};
    globe.phaseDeg = 40.0;
    globe.sunAngleDeg = look.between(0.0, 360.0);
    const double turn = 2.0 * 3.141592653589793 * number / frameCount;
    globe.radius = 400.0 * (1.0 + 0.02 * std::sin(3.0 * turn));
    globe.centerX = 640.3 + 20.0 * std::cos(turn);
    globe.centerY = 480.7 + 20.0 * std::sin(2.0 * turn);
    addStars(plane, 200, look);
    GlobePainter(globe, look).paint(plane, 0.0, 1.0);
    plane.blur(1.0);
    Draws grain(m_seed + 1000U + static_cast<quint32>(number));
    DiscPicture result;
    QImage photograph = plane.photograph(3.0, grain);
    paintBeacons(photograph, globe.centerX, globe.centerY, globe.radius);
    result.image = throughJpeg(photograph, 90);
    result.hasDisc = true;
    result.centerX = globe.centerX;
    result.centerY = globe.centerY;
    result.radius = globe.radius;
    result.recipe = QString("frame %1").arg(number);
    return result;
}
