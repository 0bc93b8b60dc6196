#include "convertimage.h"

#include "imagecompare.h"
#include "messagecollector.h"
#include "photographs.h"
#include "tickcounter.h"

#include <QColor>
#include <QtTest>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

namespace
{

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr int largest = std::numeric_limits<int>::max();
constexpr int smallest = std::numeric_limits<int>::min();
const QColor untouched(1, 2, 3, 255);

struct Disc {
    int centerX = 0;
    int centerY = 0;
    int radius = 0;
    double distance = 100.0;
};

void paint(QImage photograph, QImage &map, const Disc &disc, double ratioX, double ratioY)
{
    ConvertImage engine;
    engine.setCenter(disc.centerX, disc.centerY);
    engine.setRadius(disc.radius);
    engine.setDistance(disc.distance);
    engine.setOutputRatio(ratioX, ratioY);
    engine.convertImage(photograph, map);
}

/// Paints with the ratios that make the upper half of the map 90 degrees and its width 360.
void paint(const QImage &photograph, QImage &map, const Disc &disc)
{
    paint(photograph, map, disc, static_cast<double>(map.width()) / photograph.width(),
          map.height() * 0.5 / photograph.height());
}

void fillRows(QImage &map, int rows, const QColor &color)
{
    for (int y = 0; y < rows; ++y) {
        for (int x = 0; x < map.width(); ++x)
            map.setPixelColor(x, y, color);
    }
}

} // namespace

class tst_ConvertImage : public QObject
{
    Q_OBJECT

private slots:
    void paintsFromTheVisibleEdgeToTheTop_data();
    void paintsFromTheVisibleEdgeToTheTop();
    void losesTheTopRowWhereTheProductFallsShort_data();
    void losesTheTopRowWhereTheProductFallsShort();
    void paintsNothingFromTheSurfaceAndBelow_data();
    void paintsNothingFromTheSurfaceAndBelow();
    void paintsTheCentreFromInfinity();
    void paintsOneColourForRadiusZero();
    void looksInTheRightDirection_data();
    void looksInTheRightDirection();
    void drawsTheOuterDiscInwardsNearTheGlobe_data();
    void drawsTheOuterDiscInwardsNearTheGlobe();
    void drawsTheOuterDiscAsSeenWithoutALens();
    void leavesPixelsBesideThePhotograph();
    void asksForNoPixelBesideThePhotograph();
    void countsSamplesAboveTheTop_data();
    void countsSamplesAboveTheTop();
    void wrapsOffsetsTo16Bits_data();
    void wrapsOffsetsTo16Bits();
    void leavesWhatItDoesNotReach_data();
    void leavesWhatItDoesNotReach();
    void writesTransparentSamplesToo();
    void keepsTheColoursOfTransparentPhotographs();
    void handlesEventsAfterEveryRow_data();
    void handlesEventsAfterEveryRow();
    void extremeCirclesPaintNothing_data();
    void extremeCirclesPaintNothing();
    void rowsBelowTheMapAreNotPainted();
    void extremeRatiosPaintTheCentreOrNothing_data();
    void extremeRatiosPaintTheCentreOrNothing();
    void nullImagesChangeNothing();
    void startsWithItsDefaults();
};

void tst_ConvertImage::paintsFromTheVisibleEdgeToTheTop_data()
{
    QTest::addColumn<double>("distance");
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("rows");
    QTest::newRow("distance 100, default size: rows 0 to 503") << 100.0 << 2048 << 504;
    QTest::newRow("distance 6.6: rows 0 to 457") << 6.6 << 16 << 458;
    QTest::newRow("distance 2: rows 0 to 336") << 2.0 << 16 << 337;
}

void tst_ConvertImage::paintsFromTheVisibleEdgeToTheTop()
{
    QFETCH(double, distance);
    QFETCH(int, width);
    QFETCH(int, rows);
    MessageCollector log;
    QImage map = canvas({width, 1024});
    paint(solidPhotograph({9, 9}), map, {4, 4, 4, distance});

    QImage expected = canvas({width, 1024});
    fillRows(expected, rows, Qt::red);
    COMPARE_IMAGES(map, expected);
    QCOMPARE(log.messages(), QStringList("Convert error 0"));
}

void tst_ConvertImage::losesTheTopRowWhereTheProductFallsShort_data()
{
    QTest::addColumn<int>("photographHeight");
    QTest::addColumn<bool>("painted");
    for (const int height : {161, 103, 107, 187})
        QTest::addRow("height %d: lost", height) << height << false;
    for (const int height : {1, 100, 128, 160, 512, 1024})
        QTest::addRow("height %d: painted", height) << height << true;
}

void tst_ConvertImage::losesTheTopRowWhereTheProductFallsShort()
{
    QFETCH(int, photographHeight);
    QFETCH(bool, painted);
    QImage map = canvas({4, 1024});
    paint(solidPhotograph({3, photographHeight}), map, {1, photographHeight / 2, 0});
    QCOMPARE(map.pixelColor(0, 0).alpha(), painted ? 255 : 0);
    QCOMPARE(map.pixelColor(0, 1), QColor(Qt::red));
}

void tst_ConvertImage::paintsNothingFromTheSurfaceAndBelow_data()
{
    QTest::addColumn<double>("distance");
    for (const double distance : {1.0, 0.999, 0.5, 0.0, -0.0, -0.5, -1.0, -1.5, -100.0, -1e300})
        QTest::addRow("distance %g", distance) << distance;
    QTest::newRow("minus infinity") << -infinity;
    QTest::newRow("no number") << notANumber;
}

void tst_ConvertImage::paintsNothingFromTheSurfaceAndBelow()
{
    QFETCH(double, distance);
    // With 169 rows the edge of the cap falls a hair short of the pole, so that a row of its own remains.
    for (const int height : {2, 98, 1024}) {
        MessageCollector log;
        QImage map = canvas({8, height}, untouched);
        paint(solidPhotograph({49, 169}), map, {24, 84, 20, distance});
        COMPARE_IMAGES(map, canvas({8, height}, untouched));
        QCOMPARE(log.messages(), QStringList("Convert error 0"));
    }
}

void tst_ConvertImage::paintsTheCentreFromInfinity()
{
    QImage map = canvas({8, 32});
    paint(locatedPhotograph({9, 9}), map, {3, 5, 4, infinity});
    QImage expected = canvas({8, 32});
    fillRows(expected, 16, QColor(0, 3, 5));
    COMPARE_IMAGES(map, expected);
}

void tst_ConvertImage::paintsOneColourForRadiusZero()
{
    QImage map = canvas({16, 64});
    paint(locatedPhotograph({9, 9}), map, {6, 2, 0});
    QImage expected = canvas({16, 64});
    fillRows(expected, 32, QColor(0, 6, 2));
    COMPARE_IMAGES(map, expected);
}

void tst_ConvertImage::looksInTheRightDirection_data()
{
    QTest::addColumn<int>("column");
    QTest::addColumn<QPoint>("offset");
    QTest::newRow("longitude -180, rightmost column: left") << 359 << QPoint(-99, 0);
    QTest::newRow("longitude -90, a quarter from the right: above") << 269 << QPoint(0, -99);
    QTest::newRow("longitude 0, just left of the middle: right") << 179 << QPoint(99, 0);
    QTest::newRow("longitude 90: below") << 89 << QPoint(0, 99);
    QTest::newRow("longitude 179, leftmost column: left, a little below") << 0 << QPoint(-99, 1);
}

void tst_ConvertImage::looksInTheRightDirection()
{
    QFETCH(int, column);
    QFETCH(QPoint, offset);
    QImage map = canvas({360, 180});
    paint(locatedPhotograph({221, 221}), map, {110, 105, 100});
    const auto colourAt = [](QPoint p) { return QColor(0, p.x(), p.y()); };
    QCOMPARE(map.pixelColor(column, 89), colourAt(QPoint(110, 105) + offset));
    // The top row is one degree away from the centre: between one and two pixels of the hundred.
    QCOMPARE(map.pixelColor(179, 0), colourAt(QPoint(111, 105)));
}

void tst_ConvertImage::drawsTheOuterDiscInwardsNearTheGlobe_data()
{
    // Offsets to the right of the centre, worked out from the perspective alone: with f = r sqrt(d d - 1) the
    // point phi away from the centre appears at f sin(phi) / (d - cos(phi)). From 0.652 of the radius
    // outwards, at distance 6.6, the excess over 0.1 f is shortened by a tenth, by no more than 0.0014 f.
    QTest::addColumn<double>("distance");
    QTest::addColumn<int>("row");
    QTest::addColumn<int>("offset");
    QTest::newRow("6.6, at the centre: as seen") << 6.6 << 0 << 7;
    QTest::newRow("6.6, near the centre: as seen") << 6.6 << 1 << 14;
    QTest::newRow("6.6, 0.352 of the radius: as seen") << 6.6 << 100 << 704;
    QTest::newRow("6.6, 0.6522 of the radius: still as seen") << 6.6 << 200 << 1304;
    QTest::newRow("6.6, 0.868 of the radius, seen at 1735: inwards") << 6.6 << 300 << 1717;
    QTest::newRow("6.6, 0.938 of the radius, seen at 1875: inwards") << 6.6 << 350 << 1857;
    QTest::newRow("6.6, 0.981 of the radius, seen at 1962: inwards") << 6.6 << 400 << 1944;
    QTest::newRow("6.6, at the edge, seen at 1999: inwards") << 6.6 << 457 << 1981;
    QTest::newRow("100, half way: as seen") << 100.0 << 255 << 1424;
    QTest::newRow("100, at the edge: as seen") << 100.0 << 503 << 1999;
    QTest::newRow("10.05, at the edge: as seen") << 10.05 << 470 << 1999;
}

void tst_ConvertImage::drawsTheOuterDiscInwardsNearTheGlobe()
{
    QFETCH(double, distance);
    QFETCH(int, row);
    QFETCH(int, offset);
    QImage map = canvas({2, 1024});
    paint(locatedPhotograph({2001, 1}), map, {0, 0, 2000, distance});
    QCOMPARE(map.pixelColor(0, row), QColor(offset / 256, offset % 256, 0));
}

void tst_ConvertImage::drawsTheOuterDiscAsSeenWithoutALens()
{
    ConvertImage engine;
    engine.setCenter(0, 0);
    engine.setRadius(2000);
    engine.setDistance(6.6);
    engine.setLens(projection::Lens::None);
    QImage photograph = locatedPhotograph({2001, 1});
    engine.setOutputRatio(2.0 / photograph.width(), 512.0 / photograph.height());
    QImage map = canvas({2, 1024});
    const MessageCollector silent;
    engine.convertImage(photograph, map);
    // The offsets above that the correction shortens, as the perspective alone has them.
    const QVector<QPair<int, int>> offsets = {
        {200, 1304}, {300, 1735}, {350, 1875}, {400, 1962}, {457, 1999}};
    for (const auto &[row, offset] : offsets)
        QCOMPARE(map.pixelColor(0, row), colourOf(offset, 0));
}

void tst_ConvertImage::leavesPixelsBesideThePhotograph()
{
    // To the right of the centre of a disc of radius 8, in a photograph of 5 columns: what would stand in
    // column 5, just beside the photograph, or farther out stays as it was.
    const double focalLength = 8 * std::sqrt(100.0 * 100.0 - 1);
    MessageCollector log;
    QImage map = canvas({2, 180}, untouched);
    paint(locatedPhotograph({5, 1}), map, {0, 0, 8});
    QImage expected = canvas({2, 180}, untouched);
    for (int k = 0; k < 90; ++k) {
        const double phi = (90 - k) * 3.14159265358979 / 180;
        const int column = static_cast<int>(focalLength * std::sin(phi) / (100 - std::cos(phi)));
        if (column < 5)
            expected.setPixelColor(0, 89 - k, QColor(0, column, 0));
        // To the left of the centre there is nothing but the centre itself.
        if (column == 0)
            expected.setPixelColor(1, 89 - k, QColor(0, 0, 0));
    }
    COMPARE_IMAGES(map, expected);
    QCOMPARE(log.messages(), QStringList("Convert error 0"));
}

void tst_ConvertImage::asksForNoPixelBesideThePhotograph()
{
    // The disc reaches beyond all four sides. In a format that is read by the pixel, the toolkit would warn of each.
    const QImage photograph = solidPhotograph({5, 5}).convertToFormat(QImage::Format_RGB16);
    MessageCollector log;
    QImage map = canvas({180, 180}, untouched);
    paint(photograph, map, {2, 2, 8});
    QCOMPARE(log.messages(), QStringList("Convert error 0"));
    QImage expected = canvas({180, 180}, untouched);
    paint(solidPhotograph({5, 5}), expected, {2, 2, 8});
    COMPARE_IMAGES(map, expected);
    QVERIFY(map.pixelColor(0, 89) == untouched && map.pixelColor(0, 0) == QColor(Qt::red));
}

void tst_ConvertImage::countsSamplesAboveTheTop_data()
{
    QTest::addColumn<QPoint>("center");
    QTest::addColumn<double>("ratioY");
    QTest::addColumn<int>("errors");
    QTest::newRow("as many rows as the half map has") << QPoint(0, 0) << 10.0 << 0;
    QTest::newRow("fewer rows") << QPoint(0, 0) << 7.0 << 0;
    QTest::newRow("two rows more, five columns each") << QPoint(0, 0) << 12.0 << 10;
    QTest::newRow("a fraction of a row more") << QPoint(0, 0) << 10.9 << 0;
    QTest::newRow("the column beside the photograph counts") << QPoint(1, 0) << 12.0 << 10;
    QTest::newRow("the second column beside it does not") << QPoint(2, 0) << 12.0 << 0;
    QTest::newRow("left of it: not counted") << QPoint(-1, 0) << 12.0 << 0;
    QTest::newRow("the row below it: not counted") << QPoint(0, 1) << 12.0 << 0;
    QTest::newRow("above it: not counted") << QPoint(0, -1) << 12.0 << 0;
}

void tst_ConvertImage::countsSamplesAboveTheTop()
{
    QFETCH(QPoint, center);
    QFETCH(double, ratioY);
    QFETCH(int, errors);
    MessageCollector log;
    QImage map = canvas({5, 20});
    paint(solidPhotograph({1, 1}), map, {center.x(), center.y(), 0}, 5.0, ratioY);
    QCOMPARE(log.messages(), QStringList(QStringLiteral("Convert error %1").arg(errors)));
}

void tst_ConvertImage::wrapsOffsetsTo16Bits_data()
{
    QTest::addColumn<bool>("vertical");
    QTest::addColumn<bool>("negative");
    QTest::addColumn<int>("radius");
    QTest::addColumn<int>("center");
    // The only row shows 0.99994999875 of the radius.
    QTest::newRow("32767 stays") << false << false << 32769 << 1 - 32767;
    QTest::newRow("32768 becomes -32768") << false << false << 32770 << 1 + 32768;
    QTest::newRow("39997 becomes -25539") << false << false << 40000 << 1 + 25539;
    QTest::newRow("65536 becomes 0") << false << false << 65540 << 1;
    QTest::newRow("-32768 stays") << false << true << 32770 << 1 + 32768;
    QTest::newRow("-32769 becomes 32767") << false << true << 32771 << 1 - 32767;
    QTest::newRow("downwards, 32767 stays") << true << false << 32769 << 1 - 32767;
    QTest::newRow("downwards, 32768 becomes -32768") << true << false << 32770 << 1 + 32768;
    QTest::newRow("upwards, -32768 stays") << true << true << 32770 << 1 + 32768;
    QTest::newRow("upwards, -32769 becomes 32767") << true << true << 32771 << 1 - 32767;
    QTest::newRow("a negative radius looks to the other side and is drawn inwards")
        << false << true << -32769 << 1 - 28179;
}

void tst_ConvertImage::wrapsOffsetsTo16Bits()
{
    QFETCH(bool, vertical);
    QFETCH(bool, negative);
    QFETCH(int, radius);
    QFETCH(int, center);
    // Longitude -180 left, -90 up, 0 right, 90 down, from the right edge of the map on.
    const int column = vertical ? (negative ? 2 : 0) : (negative ? 3 : 1);
    QImage map = canvas({4, 2});
    const QImage photograph = vertical ? locatedPhotograph({3, 3}) : locatedPhotograph({3, 1});
    paint(photograph, map, {vertical ? 1 : center, vertical ? center : 0, radius});
    QCOMPARE(map.pixelColor(column, 0), QColor(0, 1, vertical ? 1 : 0));
}

void tst_ConvertImage::leavesWhatItDoesNotReach_data()
{
    QTest::addColumn<int>("height");
    QTest::addColumn<int>("painted");
    QTest::newRow("one row: there is no upper half") << 1 << 0;
    QTest::newRow("two rows") << 2 << 1;
    QTest::newRow("three rows: the half row is lost") << 3 << 1;
    QTest::newRow("seven rows") << 7 << 3;
    QTest::newRow("200 rows: one row of margin") << 200 << 99;
    QTest::newRow("2048 rows: the lower half, ten rows of margin, six of the edge") << 2048 << 1008;
}

void tst_ConvertImage::leavesWhatItDoesNotReach()
{
    QFETCH(int, height);
    QFETCH(int, painted);
    QImage map = canvas({3, height}, untouched);
    paint(solidPhotograph({5, 1}), map, {2, 0, 0});
    QImage expected = canvas({3, height}, untouched);
    fillRows(expected, painted, Qt::red);
    COMPARE_IMAGES(map, expected);
}

void tst_ConvertImage::writesTransparentSamplesToo()
{
    QImage map = canvas({4, 8}, untouched);
    paint(solidPhotograph({3, 3}, Qt::transparent), map, {1, 1, 1});
    QCOMPARE(map.pixelColor(0, 0), QColor(0, 0, 0, 0));
    QCOMPARE(map.pixelColor(3, 3), QColor(0, 0, 0, 0));
    QCOMPARE(map.pixelColor(0, 4), untouched);
}

void tst_ConvertImage::keepsTheColoursOfTransparentPhotographs()
{
    // Every value of one channel with every alpha, as the canvas itself stores a colour that it is given.
    QImage photograph(256, 256, QImage::Format_ARGB32);
    for (int y = 0; y < 256; ++y) {
        for (int x = 0; x < 256; ++x)
            photograph.setPixel(x, y, qRgba(x, 255 - x, x ^ 0x55, y));
    }
    for (int y = 0; y < 256; ++y) {
        QImage map = canvas({1, 2});
        QImage expected = canvas({1, 2});
        for (int x = 0; x < 256; ++x) {
            MessageCollector log;
            paint(photograph, map, {x, y, 0}, 1.0, 1.0 / 256);
            expected.setPixelColor(0, 0, photograph.pixelColor(x, y));
            QCOMPARE(map.pixel(0, 0), expected.pixel(0, 0));
            QVERIFY(map == expected);
        }
    }
}

void tst_ConvertImage::handlesEventsAfterEveryRow_data()
{
    QTest::addColumn<QSize>("mapSize");
    QTest::addColumn<int>("rows");
    QTest::newRow("ten rows") << QSize(3, 20) << 10;
    QTest::newRow("no columns") << QSize(0, 0) << 10;
    QTest::newRow("rows above the top") << QSize(3, 10) << 10;
}

void tst_ConvertImage::handlesEventsAfterEveryRow()
{
    QFETCH(QSize, mapSize);
    QFETCH(int, rows);
    QImage map = canvas(mapSize);
    QCoreApplication::processEvents();
    const TickCounter counter;
    MessageCollector log;
    paint(solidPhotograph({1, 1}), map, {0, 0, 0}, 3.0, 10.0);
    QCOMPARE(counter.ticks, rows);
}

void tst_ConvertImage::extremeCirclesPaintNothing_data()
{
    QTest::addColumn<QPoint>("center");
    QTest::addColumn<int>("radius");
    for (const int x : {smallest, smallest + 32768, 0, largest - 32767, largest}) {
        for (const int y : {smallest, 0, largest}) {
            for (const int radius : {smallest, largest})
                QTest::addRow("centre %d, %d, radius %d", x, y, radius) << QPoint(x, y) << radius;
        }
    }
}

void tst_ConvertImage::extremeCirclesPaintNothing()
{
    QFETCH(QPoint, center);
    QFETCH(int, radius);
    MessageCollector log;
    QImage map = canvas({64, 32}, untouched);
    paint(solidPhotograph({40, 40}), map, {center.x(), center.y(), radius, 6.6});
    // Only a centre within 16 bits of the photograph can show any of it.
    if (!center.isNull())
        COMPARE_IMAGES(map, canvas({64, 32}, untouched));
    QCOMPARE(log.messages(), QStringList("Convert error 0"));
}

void tst_ConvertImage::rowsBelowTheMapAreNotPainted()
{
    // The rows of the margin, 33000, wrap to -32536: the first row to paint lies far below a map of 20 rows.
    constexpr int height = 20;
    constexpr int more = 40;
    constexpr quint32 before = 0xff010203U;
    std::vector<quint32> pixels(height + more, before);
    QImage map(reinterpret_cast<uchar *>(pixels.data()), 1, height, 4, QImage::Format_ARGB32_Premultiplied);
    paint(solidPhotograph({9, 1}), map, {4, 0, 4}, 1.0, 3300000.0);
    QVERIFY(std::all_of(pixels.begin(), pixels.begin() + height, [](quint32 p) { return p == 0xffff0000U; }));
    QVERIFY(std::all_of(pixels.begin() + height, pixels.end(), [](quint32 p) { return p == before; }));
}

void tst_ConvertImage::extremeRatiosPaintTheCentreOrNothing_data()
{
    QTest::addColumn<double>("ratioX");
    QTest::addColumn<double>("ratioY");
    QTest::addColumn<bool>("painted");
    QTest::newRow("no rows") << 1.0 << 0.0 << false;
    QTest::newRow("less than no rows") << 1.0 << -10.0 << false;
    QTest::newRow("endless rows") << 1.0 << infinity << false;
    QTest::newRow("less than endless rows") << 1.0 << -infinity << false;
    QTest::newRow("rows beyond every int") << 1.0 << 1e300 << false;
    QTest::newRow("rows that are no number") << 1.0 << notANumber << false;
    QTest::newRow("no columns: the centre") << 0.0 << 10.0 << true;
    QTest::newRow("endless columns") << infinity << 10.0 << true;
    QTest::newRow("columns that are no number: the centre") << notANumber << 10.0 << true;
}

void tst_ConvertImage::extremeRatiosPaintTheCentreOrNothing()
{
    QFETCH(double, ratioX);
    QFETCH(double, ratioY);
    QFETCH(bool, painted);
    MessageCollector log;
    QImage map = canvas({4, 20}, untouched);
    paint(solidPhotograph({5, 1}), map, {2, 0, 2}, ratioX, ratioY);
    QCOMPARE(map != canvas({4, 20}, untouched), painted);
    QCOMPARE(log.messages(), QStringList("Convert error 0"));
}

void tst_ConvertImage::nullImagesChangeNothing()
{
    MessageCollector log;
    QImage map = canvas({4, 20}, untouched);
    paint(QImage(), map, {2, 0, 2}, 1.0, 10.0);
    COMPARE_IMAGES(map, canvas({4, 20}, untouched));
    QImage nothing;
    paint(solidPhotograph({5, 5}), nothing, {2, 2, 2}, 1.0, 2.0);
    QVERIFY(nothing.isNull());
    QCOMPARE(log.messages(), QStringList({"Convert error 0", "Convert error 0"}));
}

void tst_ConvertImage::startsWithItsDefaults()
{
    QImage photograph = locatedPhotograph({40, 10});
    QImage byDefault = canvas({80, 40});
    ConvertImage().convertImage(photograph, byDefault);
    QImage spelledOut = canvas({80, 40});
    paint(photograph, spelledOut, {0, 0, 0, 100.0}, 2.0, 2.0);
    COMPARE_IMAGES(byDefault, spelledOut);
    QVERIFY(!isBlank(byDefault));
}

QTEST_GUILESS_MAIN(tst_ConvertImage)
#include "tst_convertimage.moc"
