#include "convertimage.h"
#include "mapconversion.h"

#include "imagecompare.h"
#include "messagecollector.h"
#include "photographs.h"
#include "referenceengine.h"
#include "referencemap.h"
#include "rng.h"

#include <QtTest>

#include <limits>

namespace
{

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr int largest = std::numeric_limits<int>::max();
constexpr int smallest = std::numeric_limits<int>::min();

enum class Kind {
    Ordinary,
    LargerMaps,
    OnePixel,
    Transparent,
    BeyondTheEdges,
    WrappedOffsets,
    Distances,
    Angles,
    LostTopRow,
    Hostile
};

/// One photograph and everything that is done with it.
struct Case {
    QImage photograph;
    MapParameters parameters;
    double rowRatioFactor = 1.0; ///< above 1, rows reach past the top of the map
    int axis = 3;
    int angle = 0;
};

QImage noise(Rng &rng, QSize size, bool transparent)
{
    const bool argb = transparent || rng.oneIn(2);
    const QImage image = noisePhotograph(rng, size, transparent ? Alpha::Random : Alpha::Opaque);
    return argb ? image.convertToFormat(QImage::Format_ARGB32) : image;
}

/// A disc inside a photograph, seen from where all of the arithmetic is at work.
Case ordinary(Rng &rng, int photographSide, QSize largestMap)
{
    Case c;
    const int width = rng.between(2, photographSide);
    const int height = rng.between(2, photographSide);
    c.photograph = noise(rng, QSize(width, height), false);
    c.parameters.centerX = rng.between(0, width);
    c.parameters.centerY = rng.between(0, height);
    c.parameters.radius = rng.between(0, photographSide);
    c.parameters.distance = rng.oneIn(2) ? rng.real(1.01, 12) : rng.real(12, 200);
    c.parameters.outputSizeX = rng.between(1, largestMap.width());
    c.parameters.outputSizeY = rng.between(1, largestMap.height());
    c.parameters.latitude = rng.of({90.0, 0.0, rng.real(-90, 90), double(rng.between(-90, 90))});
    c.parameters.longitude = rng.of({-90.0, 0.0, rng.real(-180, 180), double(rng.between(-180, 180))});
    c.parameters.azimuth = rng.of({0.0, 0.0, rng.real(-180, 180), double(rng.between(-180, 180))});
    c.rowRatioFactor = rng.of({1.0, 1.3, 0.7});
    c.axis = rng.of({1, 2, 3, 3, 0, 17});
    c.angle = rng.between(-400, 400);
    return c;
}

int hostileInt(Rng &rng)
{
    return rng.of({0, 1, -1, 32767, 32768, -32769, 65536, smallest, smallest + 1, largest - 1, largest,
                   static_cast<int>(rng.word())});
}

double hostileReal(Rng &rng)
{
    return rng.of({0.0, -0.0, 1.0, 1e-300, -1e300, 1e300, infinity, -infinity, notANumber, 2147483647.0,
                   2147483648.0, rng.real(-1e10, 1e10)});
}

Case makeCase(Kind kind, Rng &rng)
{
    if (kind == Kind::LargerMaps)
        return ordinary(rng, 300, {700, 300});
    Case c = ordinary(rng, 80, {96, 64});
    MapParameters &p = c.parameters;
    switch (kind) {
    case Kind::Ordinary:
    case Kind::LargerMaps:
        break;
    case Kind::OnePixel:
        c.photograph = noise(rng, QSize{rng.of({1, 40}), rng.of({1, 40})}, true);
        p.centerX = rng.between(0, 1);
        p.centerY = 0;
        p.radius = rng.of({0, 1, 3, 50});
        if (rng.oneIn(3))
            p.outputSizeX = 1;
        if (rng.oneIn(3))
            p.outputSizeY = rng.between(1, 3);
        break;
    case Kind::Transparent:
        c.photograph = noise(rng, QSize(60, 60), true);
        if (rng.oneIn(3))
            c.photograph = c.photograph.convertToFormat(
                rng.of({QImage::Format_ARGB32_Premultiplied, QImage::Format_RGB888, QImage::Format_Indexed8,
                        QImage::Format_Grayscale8, QImage::Format_RGB16, QImage::Format_RGBA64}));
        break;
    case Kind::BeyondTheEdges:
        p.centerX = rng.between(-40, 120);
        p.centerY = rng.between(-40, 120);
        p.radius = rng.between(-150, 150);
        break;
    case Kind::WrappedOffsets: {
        // One row or one column: a sample in the direction of the other axis stays on it, however far out.
        const bool wide = rng.oneIn(2);
        c.photograph = noise(rng, wide ? QSize(20000, 1) : QSize(1, 20000), false);
        p.centerX = wide ? rng.between(0, 20000) : 0;
        p.centerY = wide ? 0 : rng.between(0, 20000);
        p.radius = rng.between(30000, 300000);
        p.outputSizeX = 4 * rng.between(1, 4);
        p.outputSizeY = rng.between(40, 200);
        break;
    }
    case Kind::Distances:
        p.distance = rng.of({0.5,   0.999,    1.0,       1.0000001,  1.001,
                             2.0,   6.6,      10.04,     10.05,      10.06,
                             100.0, 200.0,    0.0,       -6.6,       1e6,
                             1e300, infinity, -infinity, notANumber, rng.real(0.5, 200)});
        break;
    case Kind::Angles:
        p.latitude = rng.of({rng.real(-10000, 10000), 89.5, 90.5, 35.7, infinity, notANumber, 1e300});
        p.longitude = rng.of({rng.real(-1500, 1500), -89.9, 270.0, 271.0, 630.0, -infinity, 1e300});
        p.azimuth = rng.of({0.0, rng.real(-1500, 1500), 0.1, 360.0, -360.0, 720.0, notANumber, -1e300});
        c.angle = rng.of({hostileInt(rng), rng.between(-100000, 100000), 90, -90, 180});
        break;
    case Kind::LostTopRow:
        c.photograph = noise(rng, QSize{rng.between(1, 20), rng.of({161, 103, 107, 187})}, false);
        p.centerX = rng.between(0, 20);
        p.centerY = rng.between(30, 100);
        p.outputSizeX = rng.between(1, 8);
        p.outputSizeY = 1024;
        p.longitude = rng.of({-90.0, 0.0});
        p.azimuth = 0.0;
        break;
    case Kind::Hostile:
        p.centerX = rng.oneIn(2) ? p.centerX : hostileInt(rng);
        p.centerY = rng.oneIn(2) ? p.centerY : hostileInt(rng);
        p.radius = rng.oneIn(2) ? p.radius : hostileInt(rng);
        p.distance = rng.oneIn(2) ? p.distance : hostileReal(rng);
        p.latitude = hostileReal(rng);
        p.longitude = rng.oneIn(2) ? p.longitude : hostileReal(rng);
        p.azimuth = rng.oneIn(2) ? 0.0 : hostileReal(rng);
        c.axis = hostileInt(rng);
        c.angle = hostileInt(rng);
        break;
    }
    return c;
}

QImage transparentMap(const MapParameters &p)
{
    return canvas({p.outputSizeX, p.outputSizeY});
}

QString inSet(int set, const QString &difference)
{
    return difference.isEmpty() ? QString() : QStringLiteral("Set %1: %2").arg(set).arg(difference);
}

bool isCorrected(const MapParameters &p)
{
    return p.lens == projection::Lens::Corrected;
}

/// The projection step alone: the painted map and the number of samples above its top.
QString compareGlobe(const Case &c, QImage &map)
{
    const MapParameters &p = c.parameters;
    QImage source = c.photograph.convertToFormat(QImage::Format_ARGB32);
    const double ratioX = static_cast<double>(p.outputSizeX) / source.width();
    const double ratioY = p.outputSizeY * 0.5 / source.height() * c.rowRatioFactor;

    QImage expected = transparentMap(p);
    const qint64 errors = reference::paintGlobe(
        source, expected, {p.centerX, p.centerY, p.radius, p.distance, ratioX, ratioY, isCorrected(p)});

    MessageCollector log;
    ConvertImage engine;
    engine.setCenter(p.centerX, p.centerY);
    engine.setRadius(p.radius);
    engine.setDistance(p.distance);
    engine.setOutputRatio(ratioX, ratioY);
    engine.setLens(p.lens);
    map = transparentMap(p);
    engine.convertImage(source, map);
    const QStringList expectedLines(QStringLiteral("Convert error %1").arg(errors));
    if (log.messages() != expectedLines)
        return QStringLiteral("\"%1\", expected \"%2\"")
            .arg(log.messages().join(u'\n'), expectedLines.join(u'\n'));
    return imageDifference(map, expected);
}

QString compareRotation(const Case &c, QImage map)
{
    QImage expected = transparentMap(c.parameters);
    reference::rotate(c.axis, c.angle, map, expected);
    QImage actual = transparentMap(c.parameters);
    ConvertImage().rotateImage(c.axis, c.angle, map, actual);
    return imageDifference(actual, expected);
}

QString compareShift(const Case &c, QImage map)
{
    QImage expected = transparentMap(c.parameters);
    reference::shift(c.parameters.longitude, map, expected);
    QImage actual = transparentMap(c.parameters);
    ConvertImage().moveImage(c.parameters.longitude, map, actual);
    return imageDifference(actual, expected);
}

QString compareChain(const Case &c, AzimuthStep azimuthStep, bool &blank)
{
    const QImage expected = referenceMap(c.photograph, c.parameters, azimuthStep);
    const MessageCollector log;
    blank = isBlank(expected);
    return imageDifference(convertToMap(c.photograph, c.parameters, azimuthStep), expected);
}

} // namespace

Q_DECLARE_METATYPE(Kind)

class tst_Exactness : public QObject
{
    Q_OBJECT

private slots:
    void agreesWithTheReference_data();
    void agreesWithTheReference();
    void agreesWhereTheLastBitDecides_data();
    void agreesWhereTheLastBitDecides();
};

void tst_Exactness::agreesWithTheReference_data()
{
    QTest::addColumn<Kind>("kind");
    QTest::addColumn<int>("sets");
    QTest::addColumn<int>("paintedDiscs");
    QTest::addColumn<int>("paintedMaps");
    QTest::newRow("ordinary discs") << Kind::Ordinary << 300 << 250 << 230;
    QTest::newRow("larger maps") << Kind::LargerMaps << 10 << 10 << 10;
    QTest::newRow("images of one pixel, row or column") << Kind::OnePixel << 100 << 40 << 30;
    QTest::newRow("transparent pictures, other formats") << Kind::Transparent << 60 << 50 << 50;
    QTest::newRow("discs beyond every edge") << Kind::BeyondTheEdges << 100 << 60 << 60;
    QTest::newRow("offsets beyond 16 bits") << Kind::WrappedOffsets << 60 << 60 << 40;
    QTest::newRow("near, far and impossible distances") << Kind::Distances << 100 << 60 << 60;
    QTest::newRow("large, negative and impossible angles") << Kind::Angles << 100 << 90 << 10;
    QTest::newRow("photographs whose top row is lost") << Kind::LostTopRow << 40 << 30 << 15;
    QTest::newRow("values of every kind") << Kind::Hostile << 200 << 20 << 5;
}

void tst_Exactness::agreesWithTheReference()
{
    QFETCH(Kind, kind);
    QFETCH(int, sets);
    QFETCH(int, paintedDiscs);
    QFETCH(int, paintedMaps);
    int discs = 0;
    int maps = 0;
    for (int set = 0; set < sets; ++set) {
        Rng rng(static_cast<quint32>(1000 * static_cast<int>(kind) + set));
        Case c = makeCase(kind, rng);
        c.parameters.lens = set % 3 == 2 ? projection::Lens::None : projection::Lens::Corrected;
        QImage map;
        bool blank = true;
        for (const QString &difference : {compareGlobe(c, map), compareRotation(c, map), compareShift(c, map),
                                          compareChain(c, AzimuthStep::EmptiesMap, blank),
                                          compareChain(c, AzimuthStep::Rotates, blank)}) {
            if (!difference.isEmpty())
                QFAIL(qPrintable(inSet(set, difference)));
        }
        discs += isBlank(map) ? 0 : 1;
        maps += blank ? 0 : 1;
    }
    // Comparing one empty map with another would prove nothing.
    QVERIFY2(discs >= paintedDiscs, qPrintable(QString::number(discs)));
    QVERIFY2(maps >= paintedMaps, qPrintable(QString::number(maps)));
}

void tst_Exactness::agreesWhereTheLastBitDecides_data()
{
    // Values that meet a whole number all but for a last bit: any other order of operations moves a sample.
    QTest::addColumn<QSize>("photographSize");
    QTest::addColumn<QSize>("mapSize");
    QTest::addColumn<int>("radius");
    QTest::addColumn<double>("distance");
    QTest::newRow("first row at a third of the rows") << QSize(21, 87) << QSize(4, 186) << 10 << 2.0;
    QTest::newRow("viewing ray that touches the globe")
        << QSize(100, 1) << QSize(2, 180) << 39 << 19.107322609297398;
    QTest::newRow("map columns by ratio") << QSize(47, 9) << QSize(12, 2) << 4 << 1e17;
}

void tst_Exactness::agreesWhereTheLastBitDecides()
{
    QFETCH(QSize, photographSize);
    QFETCH(QSize, mapSize);
    QFETCH(int, radius);
    QFETCH(double, distance);
    Rng rng(1);
    Case c;
    c.photograph = noise(rng, photographSize, false);
    c.parameters.centerX = photographSize.width() / 2;
    c.parameters.centerY = photographSize.height() / 2;
    c.parameters.radius = radius;
    c.parameters.distance = distance;
    c.parameters.outputSizeX = mapSize.width();
    c.parameters.outputSizeY = mapSize.height();
    QImage map;
    QCOMPARE(compareGlobe(c, map), QString());
    QVERIFY(!isBlank(map));
}

QTEST_GUILESS_MAIN(tst_Exactness)
#include "tst_exactness.moc"
