#include "convertimage.h"

#include "imagecompare.h"
#include "photographs.h"
#include "tickcounter.h"

#include <QColor>
#include <QtTest>

#include <limits>

namespace
{

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr int largest = std::numeric_limits<int>::max();
constexpr int smallest = std::numeric_limits<int>::min();
const QColor untouched(1, 2, 3, 255);

/// A map whose colours say where they stand.
QImage locatedMap(int width, int height)
{
    return locatedPhotograph({width, height}, QImage::Format_ARGB32_Premultiplied);
}

QImage rotated(int axis, int angle, QImage map)
{
    QImage result = canvas(map.size(), untouched);
    ConvertImage().rotateImage(axis, angle, map, result);
    return result;
}

QImage moved(double angle, QImage map)
{
    QImage result = canvas(map.size());
    ConvertImage().moveImage(angle, map, result);
    return result;
}

} // namespace

class tst_RotateImage : public QObject
{
    Q_OBJECT

private slots:
    void shiftsByUpToOnePixelUnrotated();
    void turnsAboutThePolarAxis();
    void bringsTheTopRowToTheEquator_data();
    void bringsTheTopRowToTheEquator();
    void knowsThreeAxes_data();
    void knowsThreeAxes();
    void leavesPixelsWithoutLongitude();
    void writesTransparentPixelsToo();
    void writesOnlyTheAreaOfTheSource();
    void anglesAreTakenModuloAWholeTurn_data();
    void anglesAreTakenModuloAWholeTurn();
    void smallestMapsAreFilled_data();
    void smallestMapsAreFilled();
    void nullImagesChangeNothing();

    void movesTheColumns_data();
    void movesTheColumns();
    void drawsNothingForLessThanOneColumn_data();
    void drawsNothingForLessThanOneColumn();
    void losesColumnsBeyondOneWidth_data();
    void losesColumnsBeyondOneWidth();
    void keepsTransparencyWhenMoving();
    void movesNullImagesNowhere();
    void handlesNoEvents();
};

void tst_RotateImage::shiftsByUpToOnePixelUnrotated()
{
    // The angle of a column is measured in 360ths of the width, the column of an angle in 360ths of the width
    // less one: everything but the first row and column comes from one pixel before.
    for (const int axis : {1, 2, 3}) {
        QImage expected = canvas({360, 180});
        for (int y = 0; y < 180; ++y) {
            for (int x = 0; x < 360; ++x)
                expected.setPixelColor(x, y, colourOf(qMax(x - 1, 0), qMax(y - 1, 0)));
        }
        COMPARE_IMAGES(rotated(axis, 0, locatedMap(360, 180)), expected);
    }
}

void tst_RotateImage::turnsAboutThePolarAxis()
{
    const QImage map = rotated(2, 90, locatedMap(360, 180));
    // What stood at longitude 10 now stands 90 degrees to the right, but for the pixel lost by resampling.
    QCOMPARE(map.pixelColor(100, 50), colourOf(9, 49));
    QCOMPARE(map.pixelColor(359, 50), colourOf(268, 49));
    QCOMPARE(map.pixelColor(0, 50), colourOf(269, 49));
    QCOMPARE(rotated(2, -90, locatedMap(360, 180)).pixelColor(100, 50), colourOf(189, 49));
}

void tst_RotateImage::bringsTheTopRowToTheEquator_data()
{
    QTest::addColumn<int>("axis");
    QTest::addColumn<int>("angle");
    QTest::addColumn<int>("longitude");
    QTest::newRow("about longitude 0, by 90: to longitude 90") << 3 << 90 << 90;
    QTest::newRow("about longitude 0, by -90: to longitude 270") << 3 << -90 << 270;
    QTest::newRow("about longitude 90, by 90: to longitude 0") << 1 << 90 << 0;
    QTest::newRow("about longitude 90, by -90: to longitude 180") << 1 << -90 << 180;
    QTest::newRow("about longitude 0, by 450: to longitude 90") << 3 << 450 << 90;
}

void tst_RotateImage::bringsTheTopRowToTheEquator()
{
    QFETCH(int, axis);
    QFETCH(int, angle);
    QFETCH(int, longitude);
    QImage map = canvas({360, 180}, Qt::blue);
    for (int x = 0; x < 360; ++x)
        map.setPixelColor(x, 0, Qt::red);
    const QImage result = rotated(axis, angle, map);
    for (int y = 0; y < 180; ++y) {
        for (int x = 0; x < 360; ++x) {
            const int along = qMin(qAbs(x - longitude), 360 - qAbs(x - longitude));
            const int across = qAbs(y - 90);
            if (along == 0 && across == 0)
                QCOMPARE(result.pixelColor(x, y), QColor(Qt::red));
            else if (along > 2 || across > 2)
                QCOMPARE(result.pixelColor(x, y), QColor(Qt::blue));
        }
    }
}

void tst_RotateImage::knowsThreeAxes_data()
{
    QTest::addColumn<int>("axis");
    for (const int axis : {0, 1, 4, -1, -3, smallest, largest})
        QTest::addRow("code %d is the first axis", axis) << axis;
}

void tst_RotateImage::knowsThreeAxes()
{
    QFETCH(int, axis);
    const QImage map = locatedMap(40, 20);
    COMPARE_IMAGES(rotated(axis, 37, map), rotated(1, 37, map));
    QVERIFY(rotated(axis, 37, map) != rotated(2, 37, map));
    QVERIFY(rotated(axis, 37, map) != rotated(3, 37, map));
}

void tst_RotateImage::leavesPixelsWithoutLongitude()
{
    // 45 degrees down on longitude 0, rotated by -135 about longitude 90, is exactly the pole: X and Y are 0.
    const QImage result = rotated(1, -135, locatedMap(4, 4));
    for (int y = 0; y < 4; ++y) {
        for (int x = 0; x < 4; ++x)
            QCOMPARE(result.pixelColor(x, y) == untouched, x == 0 && y == 1);
    }
}

void tst_RotateImage::writesTransparentPixelsToo()
{
    COMPARE_IMAGES(rotated(3, 54, canvas({32, 16})), canvas({32, 16}));
}

void tst_RotateImage::writesOnlyTheAreaOfTheSource()
{
    QImage map = locatedMap(20, 10);
    QImage larger = canvas({23, 14}, untouched);
    ConvertImage().rotateImage(3, 25, map, larger);
    COMPARE_IMAGES(larger.copy(0, 0, 20, 10), rotated(3, 25, map));
    for (int y = 0; y < 14; ++y) {
        for (int x = 0; x < 23; ++x)
            QCOMPARE(larger.pixelColor(x, y) == untouched, x >= 20 || y >= 10);
    }
    QImage smaller = canvas({7, 5}, untouched);
    ConvertImage().rotateImage(3, 25, map, smaller);
    COMPARE_IMAGES(smaller, rotated(3, 25, map).copy(0, 0, 7, 5));
}

void tst_RotateImage::anglesAreTakenModuloAWholeTurn_data()
{
    QTest::addColumn<int>("angle");
    QTest::addColumn<int>("same");
    QTest::newRow("the largest int") << largest << 127;
    QTest::newRow("the smallest int") << smallest << -128;
    QTest::newRow("two turns and a little") << 730 << 10;
    QTest::newRow("backwards") << -350 << 10;
}

void tst_RotateImage::anglesAreTakenModuloAWholeTurn()
{
    QFETCH(int, angle);
    QFETCH(int, same);
    // In an odd map no sample lies near the border of two pixels, where the last bits would decide.
    for (const int axis : {1, 2, 3}) {
        const QImage result = rotated(axis, angle, locatedMap(7, 5));
        COMPARE_IMAGES(result.copy(1, 1, 6, 3), rotated(axis, same, locatedMap(7, 5)).copy(1, 1, 6, 3));
    }
}

void tst_RotateImage::smallestMapsAreFilled_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("one pixel") << QSize(1, 1);
    QTest::newRow("one column") << QSize(1, 9);
    QTest::newRow("one row") << QSize(9, 1);
}

void tst_RotateImage::smallestMapsAreFilled()
{
    QFETCH(QSize, size);
    for (const int axis : {1, 2, 3}) {
        const QImage result = rotated(axis, 30, locatedMap(size.width(), size.height()));
        for (int y = 0; y < size.height(); ++y) {
            for (int x = 0; x < size.width(); ++x) {
                const QColor colour = result.pixelColor(x, y);
                QVERIFY(colour.green() < size.width() && colour.blue() < size.height());
                QVERIFY(colour != untouched);
            }
        }
    }
}

void tst_RotateImage::nullImagesChangeNothing()
{
    QImage nothing;
    QImage map = canvas({8, 4}, untouched);
    ConvertImage().rotateImage(3, 54, nothing, map);
    COMPARE_IMAGES(map, canvas({8, 4}, untouched));
    ConvertImage().rotateImage(3, 54, map, nothing);
    QVERIFY(nothing.isNull());
}

void tst_RotateImage::movesTheColumns_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<double>("angle");
    QTest::addColumn<int>("toTheRight");
    QTest::newRow("90 degrees: a quarter to the right") << 2048 << 90.0 << 512;
    QTest::newRow("-90 degrees: a quarter to the left") << 2048 << -90.0 << -512;
    QTest::newRow("270 degrees") << 2048 << 270.0 << 1536;
    QTest::newRow("a quarter of an odd width is truncated") << 1023 << 90.0 << 255;
    QTest::newRow("to the left it is truncated too") << 1023 << -90.0 << -255;
    QTest::newRow("one column") << 2048 << 0.18 << 1;
    QTest::newRow("359 degrees") << 2048 << 359.0 << 2042;
    QTest::newRow("360 degrees: the whole picture") << 2048 << 360.0 << 2048;
    QTest::newRow("-360 degrees: the whole picture") << 2048 << -360.0 << -2048;
    QTest::newRow("361 degrees are 1") << 2048 << 361.0 << 5;
    QTest::newRow("-361 degrees are -1") << 2048 << -361.0 << -5;
    QTest::newRow("720 degrees are 360") << 2048 << 720.0 << 2048;
    QTest::newRow("-720 degrees are -360") << 2048 << -720.0 << -2048;
    QTest::newRow("one column wide, a whole turn") << 1 << 360.0 << 1;
    QTest::newRow("two columns wide, half a turn") << 2 << 180.0 << 1;
}

void tst_RotateImage::movesTheColumns()
{
    QFETCH(int, width);
    QFETCH(double, angle);
    QFETCH(int, toTheRight);
    const QImage map = locatedMap(width, 3);
    QImage expected = canvas({width, 3});
    for (int x = 0; x < width; ++x) {
        for (int y = 0; y < 3; ++y)
            expected.setPixelColor((x + toTheRight + width) % width, y, map.pixelColor(x, y));
    }
    COMPARE_IMAGES(moved(angle, map), expected);
}

void tst_RotateImage::drawsNothingForLessThanOneColumn_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<double>("angle");
    QTest::newRow("no angle") << 2048 << 0.0;
    QTest::newRow("0.1 degrees of 2048 columns") << 2048 << 0.1;
    QTest::newRow("-0.1 degrees of 2048 columns") << 2048 << -0.1;
    QTest::newRow("one column of 360, all but a little") << 360 << 0.999999;
    QTest::newRow("360.1 degrees are 0.1") << 2048 << 360.1;
    QTest::newRow("-360.1 degrees are -0.1") << 2048 << -360.1;
    QTest::newRow("359 degrees of one column") << 1 << 359.0;
    QTest::newRow("no number") << 2048 << std::numeric_limits<double>::quiet_NaN();
    QTest::newRow("infinity") << 2048 << infinity;
    QTest::newRow("minus infinity") << 2048 << -infinity;
}

void tst_RotateImage::drawsNothingForLessThanOneColumn()
{
    QFETCH(int, width);
    QFETCH(double, angle);
    QImage map = locatedMap(width, 2);
    QImage result = canvas({width, 2}, untouched);
    ConvertImage().moveImage(angle, map, result);
    COMPARE_IMAGES(result, canvas({width, 2}, untouched));
}

void tst_RotateImage::losesColumnsBeyondOneWidth_data()
{
    QTest::addColumn<double>("angle");
    QTest::addColumn<int>("toTheRight");
    QTest::newRow("721 degrees are 361: the first column stays empty") << 721.0 << 1;
    QTest::newRow("-721 degrees are -361: the last column stays empty") << -721.0 << -1;
    QTest::newRow("1000 degrees are 640") << 1000.0 << 280;
    QTest::newRow("-1000 degrees are -640") << -1000.0 << -280;
    QTest::newRow("1079 degrees are 719: one column is left") << 1079.0 << 359;
    QTest::newRow("1080 degrees are 720: nothing is left") << 1080.0 << 360;
    QTest::newRow("-1080 degrees are -720: nothing is left") << -1080.0 << -360;
    QTest::newRow("a million degrees: nothing is left") << 1e6 << 360;
    QTest::newRow("more degrees than any int: nothing is left") << 1e300 << 360;
    QTest::newRow("less degrees than any int: nothing is left") << -1e300 << -360;
}

void tst_RotateImage::losesColumnsBeyondOneWidth()
{
    QFETCH(double, angle);
    QFETCH(int, toTheRight);
    const QImage map = locatedMap(360, 2);
    QImage expected = canvas({360, 2});
    for (int x = 0; x < 360; ++x) {
        for (int y = 0; y < 2; ++y) {
            if (expected.valid(x + toTheRight, y))
                expected.setPixelColor(x + toTheRight, y, map.pixelColor(x, y));
        }
    }
    COMPARE_IMAGES(moved(angle, map), expected);
}

void tst_RotateImage::keepsTransparencyWhenMoving()
{
    QImage map = canvas({256, 256});
    for (int alpha = 0; alpha < 256; ++alpha) {
        for (int x = 0; x < 256; ++x)
            map.setPixelColor(x, alpha, QColor(x, 255 - x, x ^ 0x55, alpha));
    }
    const QImage result = moved(90.0, map);
    COMPARE_IMAGES(result.copy(64, 0, 192, 256), map.copy(0, 0, 192, 256));
    COMPARE_IMAGES(result.copy(0, 0, 64, 256), map.copy(192, 0, 64, 256));
}

void tst_RotateImage::movesNullImagesNowhere()
{
    QImage nothing;
    QImage map = canvas({8, 4}, untouched);
    ConvertImage().moveImage(90.0, nothing, map);
    COMPARE_IMAGES(map, canvas({8, 4}, untouched));
    ConvertImage().moveImage(90.0, map, nothing);
    QVERIFY(nothing.isNull());
}

void tst_RotateImage::handlesNoEvents()
{
    QCoreApplication::processEvents();
    const TickCounter counter;
    rotated(3, 54, locatedMap(64, 32));
    moved(90.0, locatedMap(64, 32));
    QCOMPARE(counter.ticks, 0);
}

QTEST_GUILESS_MAIN(tst_RotateImage)
#include "tst_rotateimage.moc"
