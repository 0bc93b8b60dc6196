// How far a map lies from where it should: of globes that a renderer drew with a true perspective. The globe wears
// bands from which each place can be read; docs/projection.md has the figures, scripts/measure-displacement runs it.
//
//   bench_displacement pattern x|y OUT.png     what the globe wears, for the longitudes or for the latitudes
//   bench_displacement measure MAPX MAPY       median and largest displacement of the two maps, in pixels of the map

#include <QCoreApplication>
#include <QImage>
#include <QStringList>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <vector>

namespace
{

constexpr double pi = 3.141592653589793;
constexpr double bandDeg = 22.5; // one turn of the colours: displacements of less than half of it can be read

/// A colour whose direction in the plane of red and green tells the place within its band.
QRgb colourAt(double degrees)
{
    const double angle = degrees / bandDeg * 2 * pi;
    return qRgb(int(std::lround(128 + 120 * std::sin(angle))), int(std::lround(128 + 120 * std::cos(angle))),
                128);
}

/// The displacement that a colour tells of a place, degrees. The renderer darkens the limb: blue says by how much.
double displacement(QRgb colour, double degrees)
{
    const double angle = std::atan2(qRed(colour) - qBlue(colour), qGreen(colour) - qBlue(colour));
    return std::remainder(angle / (2 * pi) * bandDeg - degrees, bandDeg);
}

bool writePattern(bool longitudes, const QString &path)
{
    QImage map(4096, 2048, QImage::Format_RGB32);
    for (int y = 0; y < map.height(); ++y)
        for (int x = 0; x < map.width(); ++x) {
            const double longitude = (x + 0.5) * 360 / map.width() - 180;
            const double latitude = 90 - (y + 0.5) * 180 / map.height();
            map.setPixel(x, y, colourAt(longitudes ? longitude : latitude));
        }
    return map.save(path);
}

bool measure(const QImage &mapX, const QImage &mapY)
{
    if (mapX.isNull() || mapX.size() != mapY.size())
        return false;
    const double pixelDeg = 360.0 / mapX.width();
    std::vector<double> lengths;
    for (int y = 0; y < mapX.height(); ++y)
        for (int x = 0; x < mapX.width(); ++x) {
            const double longitude = x * 360.0 / mapX.width() - 180;
            const double latitude = 90 - y * 180.0 / mapX.height();
            const QRgb colourX = mapX.pixel(x, y);
            const QRgb colourY = mapY.pixel(x, y);
            const auto space = [](QRgb c) { return qBlue(c) < 20; };
            if (qAlpha(colourX) == 0 || space(colourX) || space(colourY)) // not painted, or beside the limb
                continue;
            // Along the globe: towards the poles a column is narrower.
            const double dx = displacement(colourX, longitude) * std::cos(latitude * pi / 180);
            lengths.push_back(std::hypot(dx, displacement(colourY, latitude)) / pixelDeg);
        }
    if (lengths.empty())
        return false;
    std::sort(lengths.begin(), lengths.end());
    std::printf("median %.1f, 99 %% below %.1f, largest %.1f pixels of %zu\n", lengths[lengths.size() / 2],
                lengths[lengths.size() * 99 / 100], lengths.back(), lengths.size());
    return true;
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 4)
        return 2;
    const bool done = arguments.at(1) == QLatin1String("pattern")
                          ? writePattern(arguments.at(2) == QLatin1String("x"), arguments.at(3))
                          : measure(QImage(arguments.at(2)), QImage(arguments.at(3)));
    return done ? 0 : 1;
}
