#include "mapconversion.h"
#include "patience.h"

#include "convertimage.h"
#include "imagecompare.h"
#include "memorylimit.h"
#include "messagecollector.h"
#include "photographs.h"
#include "referencemap.h"
#include "rng.h"

#include <QColor>
#include <QTimer>
#include <QtTest>

#include <array>
#include <limits>

namespace
{

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr int largest = std::numeric_limits<int>::max();
constexpr int smallest = std::numeric_limits<int>::min();

const QImage &photograph()
{
    static const QImage image = locatedPhotograph({101, 91});
    return image;
}

/// A disc that fills the photograph, and a chain that skips every step after the first.
MapParameters projectionOnly()
{
    MapParameters p;
    p.centerX = 50;
    p.centerY = 45;
    p.radius = 44;
    p.distance = 6.6;
    p.outputSizeX = 128;
    p.outputSizeY = 64;
    p.latitude = 90.0;
    p.longitude = -90.0;
    p.azimuth = 0.0;
    return p;
}

QImage convert(const MapParameters &p, AzimuthStep azimuthStep = AzimuthStep::Rotates)
{
    const MessageCollector silent;
    return convertToMap(photograph(), p, azimuthStep);
}

/// The map of the projection step alone, made by hand.
QImage projectionStep()
{
    const MapParameters p = projectionOnly();
    QImage source = photograph();
    QImage map = canvas({p.outputSizeX, p.outputSizeY});
    ConvertImage engine;
    engine.setCenter(p.centerX, p.centerY);
    engine.setRadius(p.radius);
    engine.setDistance(p.distance);
    engine.setOutputRatio(128.0 / 101, 64 * 0.5 / 91);
    const MessageCollector silent;
    engine.convertImage(source, map);
    return map;
}

QImage shifted(const QImage &map, int toTheRight)
{
    QImage result = canvas(map.size());
    for (int y = 0; y < map.height(); ++y) {
        for (int x = 0; x < map.width(); ++x)
            result.setPixelColor((x + toTheRight + map.width()) % map.width(), y, map.pixelColor(x, y));
    }
    return result;
}

QImage rotated(QImage map, int angle)
{
    QImage result = canvas(map.size());
    ConvertImage().rotateImage(3, angle, map, result);
    return result;
}

} // namespace

class tst_MapConversion : public QObject
{
    Q_OBJECT

private slots:
    void computesTheRatios();
    void skipsEveryStepAtThePole();
    void appliesTheStepsInOrder();
    void azimuthTurnsToTheLeft_data();
    void azimuthTurnsToTheLeft();
    void smallAnglesBlankTheMap_data();
    void smallAnglesBlankTheMap();
    void longitudeMovesToTheRight_data();
    void longitudeMovesToTheRight();
    void latitudeIsTruncated_data();
    void latitudeIsTruncated();
    void resamplesForAnyLatitudeButThePole();
    void azimuthWithoutCanvasEmptiesTheMap();
    void convertsAnyFormat_data();
    void convertsAnyFormat();
    void convertsSixteenBitChannels_data();
    void convertsSixteenBitChannels();
    void leavesThePhotographAlone();
    void changesDuringEventsChangeNothing();
    void tellsItsListenerAlone_data();
    void tellsItsListenerAlone();
    void nullPhotographGivesNullMap();
    void impossibleSizesGiveNullMaps_data();
    void impossibleSizesGiveNullMaps();
    void anyValueGivesTheReferenceMap_data();
    void anyValueGivesTheReferenceMap();
#ifdef Q_OS_LINUX
    void canvasesThatDoNotFitGiveNullMaps_data();
    void canvasesThatDoNotFitGiveNullMaps();
    void laterCanvasesThatDoNotFitDoNoHarm_data();
    void laterCanvasesThatDoNotFitDoNoHarm();
    void photographThatCannotBeConvertedGivesNullMap();
#endif
};

void tst_MapConversion::computesTheRatios()
{
    const OutputRatio ratio = outputRatio(QSize(1000, 161), QSize(2048, 1023));
    QCOMPARE(ratio.x, 2.048);
    QVERIFY(ratio.y == 511.5 / 161);
}

void tst_MapConversion::skipsEveryStepAtThePole()
{
    MessageCollector log;
    const QImage map = convertToMap(photograph(), projectionOnly());
    QCOMPARE(log.messages(), QStringList("Convert error 0"));
    QCOMPARE(map.format(), QImage::Format_ARGB32_Premultiplied);
    COMPARE_IMAGES(map, projectionStep());
    QVERIFY(!isBlank(map));
}

void tst_MapConversion::appliesTheStepsInOrder()
{
    MapParameters p = projectionOnly();
    p.azimuth = 45.0;
    p.latitude = 20.0;
    p.longitude = 30.0;
    // 128 columns: 45 degrees are 16 of them, 120 degrees 42.67.
    COMPARE_IMAGES(convert(p), shifted(rotated(shifted(projectionStep(), -16), 70), 42));
}

void tst_MapConversion::azimuthTurnsToTheLeft_data()
{
    QTest::addColumn<double>("azimuth");
    QTest::addColumn<int>("toTheRight");
    QTest::newRow("90 degrees: a quarter to the left") << 90.0 << -32;
    QTest::newRow("-90 degrees: a quarter to the right") << -90.0 << 32;
    QTest::newRow("360 degrees: the same picture") << 360.0 << 0;
    QTest::newRow("450 degrees are 90") << 450.0 << -32;
}

void tst_MapConversion::azimuthTurnsToTheLeft()
{
    QFETCH(double, azimuth);
    QFETCH(int, toTheRight);
    MapParameters p = projectionOnly();
    p.azimuth = azimuth;
    COMPARE_IMAGES(convert(p), shifted(projectionStep(), toTheRight));
}

void tst_MapConversion::smallAnglesBlankTheMap_data()
{
    QTest::addColumn<double>("azimuth");
    QTest::addColumn<double>("longitude");
    QTest::addColumn<bool>("blank");
    QTest::newRow("azimuth of 0.1 degrees, less than a column") << 0.1 << -90.0 << true;
    QTest::newRow("azimuth of -0.1 degrees") << -0.1 << -90.0 << true;
    QTest::newRow("longitude just beside -90") << 0.0 << -89.9 << true;
    QTest::newRow("longitude just beside -90, to the west") << 0.0 << -90.1 << true;
    QTest::newRow("azimuth that is no number") << notANumber << -90.0 << true;
    QTest::newRow("azimuth without end") << infinity << -90.0 << true;
    QTest::newRow("longitude that is no number") << 0.0 << notANumber << true;
    QTest::newRow("longitude without end") << 0.0 << -infinity << true;
    QTest::newRow("minus zero is no azimuth") << -0.0 << -90.0 << false;
    QTest::newRow("one column of azimuth") << 360.0 / 128 << -90.0 << false;
    QTest::newRow("one column of longitude") << 0.0 << -90 + 360.0 / 128 << false;
}

void tst_MapConversion::smallAnglesBlankTheMap()
{
    QFETCH(double, azimuth);
    QFETCH(double, longitude);
    QFETCH(bool, blank);
    MapParameters p = projectionOnly();
    p.azimuth = azimuth;
    p.longitude = longitude;
    QCOMPARE(convert(p) == canvas(QSize(128, 64)), blank);
}

void tst_MapConversion::longitudeMovesToTheRight_data()
{
    QTest::addColumn<double>("longitude");
    QTest::addColumn<int>("toTheRight");
    QTest::newRow("0: a quarter") << 0.0 << 32;
    QTest::newRow("180: three quarters") << 180.0 << 96;
    QTest::newRow("-180: a quarter to the left") << -180.0 << -32;
    QTest::newRow("10.5: 100.5 degrees are 35.7 columns, truncated") << 10.5 << 35;
    QTest::newRow("270: the whole picture") << 270.0 << 128;
}

void tst_MapConversion::longitudeMovesToTheRight()
{
    QFETCH(double, longitude);
    QFETCH(int, toTheRight);
    MapParameters p = projectionOnly();
    p.longitude = longitude;
    COMPARE_IMAGES(convert(p), shifted(projectionStep(), toTheRight));
}

void tst_MapConversion::latitudeIsTruncated_data()
{
    QTest::addColumn<double>("latitude");
    QTest::addColumn<int>("angle");
    QTest::newRow("35.7: 54 degrees") << 35.7 << 54;
    QTest::newRow("36: 54 degrees") << 36.0 << 54;
    QTest::newRow("35.00001: 54 degrees") << 35.00001 << 54;
    QTest::newRow("35: 55 degrees") << 35.0 << 55;
    QTest::newRow("89.5: 0 degrees") << 89.5 << 0;
    QTest::newRow("90.5: 0 degrees") << 90.5 << 0;
    QTest::newRow("91.5: -1 degree") << 91.5 << -1;
    QTest::newRow("-90: 180 degrees") << -90.0 << 180;
    QTest::newRow("no number: the smallest int") << notANumber << smallest;
    QTest::newRow("infinity: the smallest int") << infinity << smallest;
    QTest::newRow("more than any int: the smallest int") << -1e10 << smallest;
}

void tst_MapConversion::latitudeIsTruncated()
{
    QFETCH(double, latitude);
    QFETCH(int, angle);
    MapParameters p = projectionOnly();
    p.latitude = latitude;
    COMPARE_IMAGES(convert(p), rotated(projectionStep(), angle));
}

void tst_MapConversion::resamplesForAnyLatitudeButThePole()
{
    // Rotated by 0 degrees the map comes from up to one pixel to the left and above.
    MapParameters p = projectionOnly();
    p.latitude = 89.5;
    const QImage map = convert(p);
    const QImage unrotated = projectionStep();
    QVERIFY(map != unrotated);
    for (int y = 0; y < 64; ++y) {
        for (int x = 0; x < 128; ++x) {
            const int left = qMax(x - 1, 0);
            const int above = qMax(y - 1, 0);
            const QColor colour = map.pixelColor(x, y);
            QVERIFY(colour == unrotated.pixelColor(left, above) || colour == unrotated.pixelColor(x, above) ||
                    colour == unrotated.pixelColor(left, y) || colour == unrotated.pixelColor(x, y));
        }
    }
}

void tst_MapConversion::azimuthWithoutCanvasEmptiesTheMap()
{
    MapParameters p = projectionOnly();
    COMPARE_IMAGES(convert(p, AzimuthStep::EmptiesMap), projectionStep());

    p.azimuth = 30.0;
    QVERIFY(convert(p, AzimuthStep::EmptiesMap).isNull());
    p.latitude = 35.0;
    COMPARE_IMAGES(convert(p, AzimuthStep::EmptiesMap), canvas(QSize(128, 64)));
    p.longitude = 135.0;
    COMPARE_IMAGES(convert(p, AzimuthStep::EmptiesMap), canvas(QSize(128, 64)));
    p.latitude = 90.0;
    COMPARE_IMAGES(convert(p, AzimuthStep::EmptiesMap), canvas(QSize(128, 64)));

    p = projectionOnly();
    p.latitude = 35.0;
    p.longitude = 135.0;
    COMPARE_IMAGES(convert(p, AzimuthStep::EmptiesMap), convert(p));
}

void tst_MapConversion::convertsAnyFormat_data()
{
    QTest::addColumn<QImage::Format>("format");
    QTest::newRow("one bit") << QImage::Format_Mono;
    QTest::newRow("palette") << QImage::Format_Indexed8;
    QTest::newRow("grey") << QImage::Format_Grayscale8;
    QTest::newRow("16 bits") << QImage::Format_RGB16;
    QTest::newRow("24 bits") << QImage::Format_RGB888;
    QTest::newRow("32 bits without alpha") << QImage::Format_RGB32;
    QTest::newRow("premultiplied") << QImage::Format_ARGB32_Premultiplied;
    QTest::newRow("64 bits") << QImage::Format_RGBA64;
}

void tst_MapConversion::convertsAnyFormat()
{
    QFETCH(QImage::Format, format);
    const QImage other = photograph().convertToFormat(format);
    const MessageCollector silent;
    COMPARE_IMAGES(convertToMap(other, projectionOnly()),
                   convertToMap(other.convertToFormat(QImage::Format_ARGB32), projectionOnly()));
}

void tst_MapConversion::convertsSixteenBitChannels_data()
{
    QTest::addColumn<QImage::Format>("format");
    QTest::newRow("colour with alpha") << QImage::Format_RGBA64;
    QTest::newRow("colour without alpha") << QImage::Format_RGBX64;
    QTest::newRow("grey") << QImage::Format_Grayscale16;
}

// Values between those of eight bits are rounded as in a conversion to 32 bits with alpha, on both paths through the
// chain.
void tst_MapConversion::convertsSixteenBitChannels()
{
    QFETCH(QImage::Format, format);
    QImage deep(256, 200, format);
    Rng rng(1);
    const auto channel = [&rng] { return static_cast<quint16>(rng.between(0, 65535)); };
    for (int y = 0; y < deep.height(); ++y) {
        for (int x = 0; x < deep.width(); ++x) {
            const std::array<quint16, 4> rgba{channel(), channel(), channel(), channel()};
            deep.setPixelColor(x, y, QColor::fromRgba64(rgba[0], rgba[1], rgba[2], rgba[3]));
        }
    }
    const MessageCollector silent;
    MapParameters rotated = projectionOnly();
    rotated.latitude = 35;
    rotated.longitude = 139;
    for (const MapParameters &p : {projectionOnly(), rotated})
        COMPARE_IMAGES(convertToMap(deep, p), convertToMap(deep.convertToFormat(QImage::Format_ARGB32), p));
}

void tst_MapConversion::tellsItsListenerAlone_data()
{
    QTest::addColumn<double>("latitude");
    QTest::newRow("in one pass") << 35.0;
    QTest::newRow("one operation after the other") << 90.0;
}

void tst_MapConversion::tellsItsListenerAlone()
{
    QFETCH(double, latitude);
    MapParameters p = projectionOnly();
    p.latitude = latitude;
    const QImage expected = convert(p);
    bool handled = false;
    QTimer::singleShot(0, this, [&] { handled = true; });
    const MessageCollector log;
    COMPARE_IMAGES(convertToMap(photograph(), p, AzimuthStep::Rotates, {}), expected);
    int rows = 0;
    QVector<qint64> samples;
    const ConversionListener listener{[&] { ++rows; }, [&](qint64 count) { samples.append(count); }};
    COMPARE_IMAGES(convertToMap(photograph(), p, AzimuthStep::Rotates, listener), expected);
    QVERIFY2(rows > 20 && rows <= 32, qPrintable(QString::number(rows)));
    QCOMPARE(samples, QVector<qint64>{0});
    QCOMPARE(log.messages(), QStringList());
    QVERIFY(!handled);
    QTRY_VERIFY_WITH_TIMEOUT(handled, patienceMs);
}

void tst_MapConversion::leavesThePhotographAlone()
{
    const QImage before = locatedPhotograph({101, 91});
    convert(projectionOnly());
    COMPARE_IMAGES(photograph(), before);
}

void tst_MapConversion::changesDuringEventsChangeNothing()
{
    // The window loads another photograph and changes every value while a conversion handles events.
    QImage image = locatedPhotograph({101, 91});
    MapParameters p = projectionOnly();
    p.latitude = 35.0;
    p.longitude = 135.0;
    p.azimuth = 30.0;
    const QImage expected = convert(p);
    int changes = 0;
    QTimer timer;
    connect(&timer, &QTimer::timeout, this, [&] {
        ++changes;
        image.fill(Qt::green);
        image = QImage();
        p = MapParameters();
        p.outputSizeX = -1;
    });
    timer.start(0);
    const MessageCollector silent;
    COMPARE_IMAGES(convertToMap(image, p), expected);
    QVERIFY(changes > 0);
}

void tst_MapConversion::nullPhotographGivesNullMap()
{
    QVERIFY(convertToMap(QImage(), projectionOnly()).isNull());
    QVERIFY(convertToMap(QImage(), MapParameters(), AzimuthStep::EmptiesMap).isNull());
}

void tst_MapConversion::impossibleSizesGiveNullMaps_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("no pixel") << QSize(0, 0);
    QTest::newRow("no column") << QSize(0, 64);
    QTest::newRow("no row") << QSize(64, 0);
    QTest::newRow("negative") << QSize(-2048, -1024);
    QTest::newRow("negative width, any height") << QSize(-1, largest);
    QTest::newRow("the smallest int") << QSize(smallest, smallest);
    QTest::newRow("the largest int") << QSize(largest, largest);
    QTest::newRow("the largest width") << QSize(largest, 1);
}

void tst_MapConversion::impossibleSizesGiveNullMaps()
{
    QFETCH(QSize, size);
    MapParameters p = projectionOnly();
    p.outputSizeX = size.width();
    p.outputSizeY = size.height();
    p.latitude = 35.0;
    p.longitude = 135.0;
    QVERIFY(convert(p).isNull());
    p.azimuth = 30.0;
    QVERIFY(convert(p).isNull());
    QVERIFY(convert(p, AzimuthStep::EmptiesMap).isNull());
}

void tst_MapConversion::anyValueGivesTheReferenceMap_data()
{
    QTest::addColumn<int>("integer");
    QTest::addColumn<double>("real");
    QTest::newRow("nothing but zeros") << 0 << 0.0;
    QTest::newRow("the largest") << largest << std::numeric_limits<double>::max();
    QTest::newRow("the smallest") << smallest << std::numeric_limits<double>::lowest();
    QTest::newRow("no number") << -1 << notANumber;
    QTest::newRow("infinity") << 32768 << infinity;
    QTest::newRow("minus infinity") << -32769 << -infinity;
}

void tst_MapConversion::anyValueGivesTheReferenceMap()
{
    QFETCH(int, integer);
    QFETCH(double, real);
    MapParameters p = projectionOnly();
    p.centerX = p.centerY = p.radius = integer;
    p.distance = p.latitude = p.longitude = p.azimuth = real;
    COMPARE_IMAGES(convert(p), referenceMap(photograph(), p));
}

#ifdef Q_OS_LINUX

void tst_MapConversion::canvasesThatDoNotFitGiveNullMaps_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("64 MB") << QSize(4096, 4096);
    QTest::newRow("1 GB") << QSize(16384, 16384);
    QTest::newRow("one column of 2147483647 rows") << QSize(1, largest);
    QTest::newRow("one row of 500 million columns") << QSize(500000000, 1);
}

void tst_MapConversion::canvasesThatDoNotFitGiveNullMaps()
{
    QFETCH(QSize, size);
    MapParameters p = projectionOnly();
    p.outputSizeX = size.width();
    p.outputSizeY = size.height();
    photograph();
    const MemoryLimit limit(32 * mebibyte);
    QVERIFY(convert(p).isNull());
    p.azimuth = 30.0;
    p.latitude = 35.0;
    QVERIFY(convert(p, AzimuthStep::EmptiesMap).isNull());
}

void tst_MapConversion::laterCanvasesThatDoNotFitDoNoHarm_data()
{
    QTest::addColumn<double>("azimuth");
    QTest::addColumn<double>("latitude");
    QTest::addColumn<double>("longitude");
    QTest::newRow("azimuth") << 30.0 << 90.0 << -90.0;
    QTest::newRow("latitude") << 0.0 << 35.0 << -90.0;
    QTest::newRow("longitude") << 0.0 << 90.0 << 135.0;
    QTest::newRow("all") << 30.0 << 35.0 << 135.0;
}

void tst_MapConversion::laterCanvasesThatDoNotFitDoNoHarm()
{
    QFETCH(double, azimuth);
    QFETCH(double, latitude);
    QFETCH(double, longitude);
    // Seen from the surface: the projection step paints nothing, so that the maps take little time.
    MapParameters p = projectionOnly();
    p.distance = 1.0;
    p.outputSizeX = 1024;
    p.outputSizeY = 512;
    p.azimuth = azimuth;
    p.latitude = latitude;
    p.longitude = longitude;
    photograph();
    const QImage complete = canvas(QSize(1024, 512));
    // One canvas takes 2 MB: some of these limits refuse the first one, some a later one, the last one none.
    QImage map;
    for (const rlim_t kibibytes : {1500UL, 2500UL, 3500UL, 4500UL, 5500UL, 6500UL, 32768UL}) {
        {
            const MemoryLimit limit(kibibytes * 1024);
            map = convert(p);
        }
        QVERIFY(map.isNull() || map == complete);
    }
    QVERIFY(!map.isNull());
}

void tst_MapConversion::photographThatCannotBeConvertedGivesNullMap()
{
    // 48 MB as bytes of grey, never touched; 192 MB as 32-bit colours.
    const QImage large(8192, 6144, QImage::Format_Grayscale8);
    const MemoryLimit limit(96 * mebibyte);
    const MessageCollector silent;
    QVERIFY(convertToMap(large, projectionOnly()).isNull());
}

#endif

QTEST_GUILESS_MAIN(tst_MapConversion)
#include "tst_mapconversion.moc"
