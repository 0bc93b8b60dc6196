#include "worldfile.h"

#include <QtTest>

#include <cmath>

namespace
{

constexpr double degree = 3.14159265358979323846 / 180;
constexpr int side = 4000;   // of the photograph
constexpr int centre = 2000; // of its disc, in both directions
constexpr int discRadius = 1990;
constexpr double distance = 6.6;

/// A photograph whose colours say where they stand, more finely than any map.
QImage locatedPhotograph()
{
    QImage picture(side, side, QImage::Format_RGB32);
    for (int y = 0; y < side; ++y) {
        auto *line = reinterpret_cast<QRgb *>(picture.scanLine(y));
        for (int x = 0; x < side; ++x)
            line[x] = 0xff000000U | QRgb(x << 12 | y);
    }
    return picture;
}

struct Place {
    double latitude;
    double longitude;
    double fromCentre; ///< degrees between it and the centre of the disc
};

/// The place on the globe that a pixel of the photograph shows; of the piece of the disc that the engine's
/// truncation toward the centre leaves to this pixel, the middle.
Place placeOf(QPoint pixel, double latitude, double longitude)
{
    const QPoint offset = pixel - QPoint(centre, centre);
    const double dx = offset.x() + (offset.x() < 0 ? -0.5 : 0.5);
    const double dy = offset.y() + (offset.y() < 0 ? -0.5 : 0.5);
    // In the triangle of camera, centre of the globe and place: the angle at the camera is eta, its side d.
    const double focalLength = discRadius * std::sqrt(distance * distance - 1);
    const double eta = std::atan(std::hypot(dx, dy) / focalLength);
    const double phi = std::asin(std::min(1.0, distance * std::sin(eta))) - eta;
    const double bearing = std::atan2(dx, -dy); // from north, clockwise
    const double lat0 = latitude * degree;
    const double sinLat = std::sin(lat0) * std::cos(phi) + std::cos(lat0) * std::sin(phi) * std::cos(bearing);
    const double lon = std::atan2(std::sin(bearing) * std::sin(phi) * std::cos(lat0),
                                  std::cos(phi) - std::sin(lat0) * sinLat);
    return {std::asin(sinLat) / degree, longitude + lon / degree, phi / degree};
}

/// How far the places of a map lie from where the world file says, pixels.
struct Displacement {
    double x = 0;
    double y = 0;
    int pixels = 0;
};

Displacement meanDisplacement(const MapParameters &p)
{
    static const QImage photograph = locatedPhotograph();
    const QImage map = convertToMap(photograph, p, AzimuthStep::Rotates, {});
    const QList<QByteArray> lines = worldFile(p).split('\n');
    const auto line = [&](int i) { return lines.at(i).toDouble(); };
    Displacement sum;
    for (int y = 0; y < map.height();
         y += 9) { // whole rows: what truncation does to one side it does to the other
        for (int x = 0; x < map.width(); ++x) {
            const QRgb colour = map.pixel(x, y);
            if (qAlpha(colour) == 0)
                continue;
            const QPoint pixel(int(colour >> 12 & 0xfff), int(colour & 0xfff));
            const Place place = placeOf(pixel, p.latitude, p.longitude);
            // Near the edge of the disc a pixel of the photograph is larger than one of the map, near a pole a
            // pixel of the map is nothing.
            if (place.fromCentre > 50 || std::abs(place.latitude) > 80)
                continue;
            sum.x += std::remainder(place.longitude - (line(4) + x * line(0)), 360) / line(0);
            sum.y += (place.latitude - (line(5) + y * line(3))) / line(3);
            ++sum.pixels;
        }
    }
    return {sum.x / sum.pixels, sum.y / sum.pixels, sum.pixels};
}

MapParameters parametersFor(QSize map, double latitude, double longitude)
{
    MapParameters p;
    p.centerX = centre;
    p.centerY = centre;
    p.radius = discRadius;
    p.distance = distance;
    p.outputSizeX = map.width();
    p.outputSizeY = map.height();
    p.latitude = latitude;
    p.longitude = longitude;
    p.lens = projection::Lens::None;
    return p;
}

} // namespace

class tst_WorldFile : public QObject
{
    Q_OBJECT

private slots:
    void hasSixLines();
    void placesWhatTheMapShows_data();
    void placesWhatTheMapShows();
    void liesBesideTheMap_data();
    void liesBesideTheMap();
};

void tst_WorldFile::hasSixLines()
{
    QCOMPARE(worldFile(parametersFor({2048, 1024}, 0, 0)),
             QByteArray("0.17578125\n0\n0\n-0.17578125\n-180\n90\n"));
}

void tst_WorldFile::placesWhatTheMapShows_data()
{
    QTest::addColumn<QSize>("map");
    QTest::addColumn<double>("latitude");
    QTest::addColumn<double>("longitude");
    QTest::newRow("on the equator") << QSize(2048, 1024) << 0.0 << 0.0;
    QTest::newRow("in the north") << QSize(2048, 1024) << 35.0 << 135.0;
    QTest::newRow("in the south") << QSize(2048, 1024) << -60.0 << -100.0;
    QTest::newRow("a shift of no whole column") << QSize(1024, 1024) << 0.0 << 140.7;
    QTest::newRow("a shift to the left") << QSize(1024, 1024) << 20.0 << -100.3;
    QTest::newRow("no shift") << QSize(2048, 1024) << 20.0 << -90.0;
    QTest::newRow("more than once round") << QSize(2048, 1024) << 20.0 << 179.9;
    QTest::newRow("from above the north pole") << QSize(2048, 1024) << 90.0 << 30.0;
    QTest::newRow("from above the south pole") << QSize(2048, 1024) << -90.0 << 30.0;
}

void tst_WorldFile::placesWhatTheMapShows()
{
    QFETCH(QSize, map);
    QFETCH(double, latitude);
    QFETCH(double, longitude);
    const Displacement mean = meanDisplacement(parametersFor(map, latitude, longitude));
    QVERIFY(mean.pixels > 5000);
    QVERIFY2(std::abs(mean.x) < 0.2, qPrintable(QString::number(mean.x)));
    QVERIFY2(std::abs(mean.y) < 0.2, qPrintable(QString::number(mean.y)));
}

void tst_WorldFile::liesBesideTheMap_data()
{
    QTest::addColumn<QString>("map");
    QTest::addColumn<QString>("format");
    QTest::addColumn<QString>("expected");
    QTest::newRow("JPEG") << "maps/OV-a.jpg"
                          << "jpg"
                          << "maps/OV-a.jgw";
    QTest::newRow("PNG") << "OV-a.png"
                         << "png"
                         << "OV-a.pgw";
    QTest::newRow("long extension") << "/maps.d/a.b.jpeg"
                                    << "jpg"
                                    << "/maps.d/a.b.jgw";
    QTest::newRow("no extension") << "maps.d/map"
                                  << "png"
                                  << "maps.d/map.pgw";
}

void tst_WorldFile::liesBesideTheMap()
{
    QFETCH(QString, map);
    QFETCH(QString, format);
    QFETCH(QString, expected);
    QCOMPARE(worldFilePath(map, format), expected);
}

QTEST_GUILESS_MAIN(tst_WorldFile)
#include "tst_worldfile.moc"
