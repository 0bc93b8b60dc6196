#include "mapconversion.h"

#include "messagecollector.h"
#include "vectorstate.h"

#include <QColor>
#include <QSet>
#include <QtTest>

#include <cmath>

/// Knows the sphere and a camera, and nothing of how the engine computes: a globe with coloured cells of 10
/// by 10 degrees is photographed by casting a ray through every pixel, converted, and looked for on the map.

namespace
{

constexpr double pi = 3.14159265358979323846;
constexpr double degree = pi / 180;
constexpr QSize mapSize(2048, 1024);
constexpr double degreesPerMapPixel = 360.0 / 2048;

struct Vector {
    double x = 0.0;
    double y = 0.0;
    double z = 0.0;
};

Vector operator+(const Vector &a, const Vector &b)
{
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}

Vector operator*(double factor, const Vector &v)
{
    return {factor * v.x, factor * v.y, factor * v.z};
}

/// A point of the globe, degrees: north and east are positive.
struct Place {
    double latitude = 0.0;
    double longitude = 0.0;
};

Vector direction(const Place &place)
{
    const double lat = place.latitude * degree;
    const double lon = place.longitude * degree;
    return {std::cos(lat) * std::cos(lon), std::cos(lat) * std::sin(lon), std::sin(lat)};
}

Place placeOf(const Vector &v)
{
    return {std::asin(qBound(-1.0, v.z, 1.0)) / degree, std::atan2(v.y, v.x) / degree};
}

double angleBetween(const Place &a, const Place &b)
{
    const double cosine = std::sin(a.latitude * degree) * std::sin(b.latitude * degree) +
                          std::cos(a.latitude * degree) * std::cos(b.latitude * degree) *
                              std::cos((a.longitude - b.longitude) * degree);
    return std::acos(qBound(-1.0, cosine, 1.0)) / degree;
}

/// 18 by 36 cells, each with a colour of its own.
QRgb cellColour(const Place &place)
{
    const int row = qBound(0, static_cast<int>(std::floor((place.latitude + 90) / 10)), 17);
    const int column = (static_cast<int>(std::floor((place.longitude + 180) / 10)) + 36) % 36;
    return qRgb(20 + 13 * row, 20 + 6 * column, 128);
}

/// Along the great circle to the nearest parallel or meridian between two cells, degrees.
double distanceToBorder(const Place &place)
{
    const auto toTens = [](double angle) { return std::abs(std::remainder(angle, 10.0)); };
    const double toMeridian =
        std::asin(std::cos(place.latitude * degree) * std::sin(toTens(place.longitude) * degree)) / degree;
    return qMin(toTens(place.latitude), toMeridian);
}

struct Shot {
    Place below;             ///< the point of the globe straight below the camera
    double distance = 100.0; ///< camera to globe centre, globe radii
    double rotated = 0.0;    ///< counter-clockwise rotation of the picture, degrees
    int radius = 2000;       ///< of the disc, pixels
    int centerX = 2060;
    int centerY = 2030;
};

/// A pinhole camera that looks at the globe's centre: north is up and east right, before the picture is
/// rotated.
QImage photographOf(const Shot &shot)
{
    // Powers of two: there are heights at which the topmost row of the map stays empty.
    QImage image(4096, 4096, QImage::Format_RGB32);
    image.fill(Qt::black);
    projection::clearUpperHalves(); // millions of sines follow
    const Vector towardsCamera = direction(shot.below);
    const Vector camera = shot.distance * towardsCamera;
    const Vector north = direction({shot.below.latitude + 90, shot.below.longitude});
    const Vector east = direction({0, shot.below.longitude + 90});
    const double c = std::cos(shot.rotated * degree);
    const double s = std::sin(shot.rotated * degree);
    const Vector right = c * east + -s * north;
    const Vector up = s * east + c * north;
    // The ray that only just touches the globe meets the edge of the disc.
    const double toHorizon = shot.distance * shot.distance - 1;
    const double focalLength = shot.radius * std::sqrt(toHorizon);

    for (int y = 0; y < image.height(); ++y) {
        auto *line = reinterpret_cast<QRgb *>(image.scanLine(y));
        const double dy = shot.centerY - y;
        const Vector rayOfRow = -focalLength * towardsCamera + dy * up;
        for (int x = 0; x < image.width(); ++x) {
            // |camera + t ray| = 1, the nearer of two solutions.
            const double dx = x - shot.centerX;
            const double a = focalLength * focalLength + dx * dx + dy * dy;
            const double b = -focalLength * shot.distance;
            const double discriminant = b * b - a * toHorizon;
            if (discriminant < 0)
                continue;
            const double t = (-b - std::sqrt(discriminant)) / a;
            line[x] = cellColour(placeOf(camera + t * (rayOfRow + dx * right)));
        }
    }
    return image;
}

MapParameters parametersFor(const Shot &shot)
{
    MapParameters p;
    p.centerX = shot.centerX;
    p.centerY = shot.centerY;
    p.radius = shot.radius;
    p.distance = shot.distance;
    p.outputSizeX = mapSize.width();
    p.outputSizeY = mapSize.height();
    p.latitude = shot.below.latitude;
    p.longitude = shot.below.longitude;
    p.azimuth = shot.rotated;
    return p;
}

/// Where the middle of a map pixel lies: longitude -180 is the left edge, the north pole the top.
Place placeOfPixel(int x, int y)
{
    return {90 - (y + 0.5) * degreesPerMapPixel, -180 + (x + 0.5) * degreesPerMapPixel};
}

} // namespace

class tst_Geometry : public QObject
{
    Q_OBJECT

private slots:
    void cellsHaveColoursOfTheirOwn();
    void bordersLieWhereTheyBelong_data();
    void bordersLieWhereTheyBelong();
    void hiddenSideStaysTransparent();
};

void tst_Geometry::cellsHaveColoursOfTheirOwn()
{
    QSet<QRgb> colours;
    for (int latitude = -85; latitude < 90; latitude += 10) {
        for (int longitude = -175; longitude < 180; longitude += 10)
            colours.insert(cellColour({double(latitude), double(longitude)}));
    }
    QCOMPARE(colours.size(), 18 * 36);
}

void tst_Geometry::bordersLieWhereTheyBelong_data()
{
    QTest::addColumn<double>("latitude");
    QTest::addColumn<double>("longitude");
    QTest::addColumn<double>("distance");
    QTest::addColumn<double>("rotated");
    QTest::addColumn<double>("tolerance"); // map pixels
    QTest::newRow("distance 100") << 35.0 << 139.0 << 100.0 << 0.0 << 2.0;
    QTest::newRow("distance 20, south, across longitude 180") << -48.0 << -176.0 << 20.0 << 0.0 << 2.0;
    QTest::newRow("distance 10.05, equator") << 0.0 << 0.0 << 10.05 << 0.0 << 2.0;
    QTest::newRow("distance 6.6, lens compression") << 10.0 << 80.0 << 6.6 << 0.0 << 12.0;
    QTest::newRow("rotated 30 degrees counter-clockwise") << 20.0 << -60.0 << 100.0 << 30.0 << 2.0;
}

void tst_Geometry::bordersLieWhereTheyBelong()
{
    QFETCH(double, latitude);
    QFETCH(double, longitude);
    QFETCH(double, distance);
    QFETCH(double, rotated);
    QFETCH(double, tolerance);
    Shot shot;
    shot.below = {latitude, longitude};
    shot.distance = distance;
    shot.rotated = rotated;
    QImage map;
    {
        const MessageCollector silent;
        map = convertToMap(photographOf(shot), parametersFor(shot));
    }
    QCOMPARE(map.size(), mapSize);

    // Where a pixel has another colour than that of its cell, a border lies off by at least its distance to
    // the nearest one.
    double farthest = 0;
    QSet<QRgb> cells;
    for (int y = 0; y < map.height(); ++y) {
        for (int x = 0; x < map.width(); ++x) {
            const Place place = placeOfPixel(x, y);
            if (angleBetween(place, shot.below) > 60)
                continue;
            const QRgb colour = cellColour(place);
            cells.insert(colour);
            if (map.pixel(x, y) != colour)
                farthest = qMax(farthest, distanceToBorder(place) / degreesPerMapPixel);
        }
    }
    QVERIFY2(farthest <= tolerance, qPrintable(QStringLiteral("A border is %1 pixels off").arg(farthest)));
    QVERIFY2(cells.size() > 120, qPrintable(QString::number(cells.size())));
}

void tst_Geometry::hiddenSideStaysTransparent()
{
    Shot shot;
    shot.below = {20.0, 0.0};
    shot.radius = 300;
    const MessageCollector silent;
    const QImage map = convertToMap(photographOf(shot), parametersFor(shot));
    for (int y = 0; y < map.height(); y += 7) {
        for (int x = 0; x < map.width(); x += 7) {
            const double angle = angleBetween(placeOfPixel(x, y), shot.below);
            if (angle > 91)
                QCOMPARE(qAlpha(map.pixel(x, y)), 0);
            else if (angle < 87)
                QCOMPARE(qAlpha(map.pixel(x, y)), 255);
        }
    }
}

QTEST_GUILESS_MAIN(tst_Geometry)
#include "tst_geometry.moc"
