#include "composedmap.h"

#include "imagecompare.h"
#include "mapconversion.h"
#include "messagecollector.h"
#include "photographs.h"
#include "qimageview.h"
#include "referencemap.h"
#include "sets.h"
#include "vectortargets.h"

#include <QtTest>

#include <algorithm>
#include <limits>

using namespace projection;

namespace
{

struct Case {
    QImage photograph;
    MapParameters parameters;
};

/// The chain in one pass with scalar approximations, where the kernels cover it; null elsewhere.
QImage composedWithScalars(const Case &c)
{
    const MapParameters &p = c.parameters;
    const int width = p.outputSizeX;
    const int azimuthShift = columnShift(-p.azimuth, width);
    const int longitudeShift = columnShift(p.longitude + 90, width);
    const bool azimuthDraws = p.azimuth == 0 || (azimuthShift != 0 && qAbs(azimuthShift) <= width);
    const bool longitudeDraws = p.longitude == -90 || (longitudeShift != 0 && qAbs(longitudeShift) <= width);
    if (!azimuthDraws || !longitudeDraws || p.latitude == 90)
        return {};
    const QImage photograph = c.photograph;
    QImage map = canvas({width, p.outputSizeY});
    const MapRotation mapRotation = {(azimuthShift + width) % width, int(90 - p.latitude),
                                     (longitudeShift + width) % width};
    const bool covered = paintComposedMap(NearSidedPerspective(perspectiveParameters(p, photograph.size())),
                                          photographView(photograph), mapRotation, canvasView(map), {},
                                          approximateSourcesScalar);
    return covered ? map : QImage();
}

/// Tries the whole chain on every target in turn.
/// @return what differs from the reference engine, empty if nothing does
QString difference(const Case &c)
{
    const MessageCollector silent;
    const QImage expected = referenceMap(c.photograph, c.parameters);
    const QImage scalar = composedWithScalars(c);
    if (!scalar.isNull()) {
        const QString found = imageDifference(scalar, expected);
        if (!found.isEmpty())
            return "scalar C++: " + found;
    }
    for (const Target &target : targets()) {
        const ForcedTarget forced(target);
        const QString found = imageDifference(convertToMap(c.photograph, c.parameters), expected);
        if (!found.isEmpty())
            return target.name + ": " + found;
    }
    return {};
}

/// A disc that may lie anywhere, on a map of even width that is tilted: what the one pass is for.
Case anyCase(Rng &rng, int photographSide, QSize largestMap)
{
    const QSize size{rng.between(1, photographSide), rng.between(1, photographSide)};
    Case c;
    c.photograph = noisePhotograph(rng, size, rng.of({Alpha::Opaque, Alpha::Random, Alpha::Extreme}));
    MapParameters &p = c.parameters;
    const bool inside = rng.oneIn(2);
    const int reach = std::min(size.width(), size.height()) / 2;
    p.centerX = inside ? size.width() / 2 : rng.between(-size.width(), 2 * size.width());
    p.centerY = inside ? size.height() / 2 : rng.between(-size.height(), 2 * size.height());
    p.radius = inside ? rng.between(0, reach) : rng.between(-10, 2 * photographSide);
    p.distance = rng.oneIn(2) ? rng.real(1.01, 12) : rng.real(12, 200);
    p.outputSizeX =
        rng.oneIn(8) ? rng.between(1, largestMap.width()) : 2 * rng.between(1, largestMap.width() / 2);
    p.outputSizeY = rng.between(1, largestMap.height());
    p.latitude = rng.oneIn(4) ? rng.real(-400, 400) : rng.between(-180, 180);
    p.longitude = rng.oneIn(4) ? rng.real(-720, 720) : rng.between(-180, 180);
    p.azimuth = rng.oneIn(3) ? 0 : rng.oneIn(2) ? rng.real(-400, 400) : rng.between(-180, 180);
    p.lens = rng.oneIn(3) ? Lens::None : Lens::Corrected;
    return c;
}

} // namespace

class tst_ComposedMap : public QObject
{
    Q_OBJECT

private slots:
    void agreesForRandomSets();
    void agreesForEverySmallSize();
    void agreesForLargeAndOddSizes_data();
    void agreesForLargeAndOddSizes();
    void agreesAtEveryWholeDegree();
    void agreesWhereCoordinatesAreWhole_data();
    void agreesWhereCoordinatesAreWhole();
    void agreesForCirclesThatLeaveThePhotograph_data();
    void agreesForCirclesThatLeaveThePhotograph();
    void agreesWhereTheTopRowIsLost();
    void ignoresTheUnusedBitsOfOpaquePhotographs();
    void leavesWhatItDoesNotCover();
    void tellsEveryRowOnceAndInOrder();
};

void tst_ComposedMap::agreesForRandomSets()
{
    int painted = 0;
    int composed = 0;
    const int sets = setsToTry(2000);
    for (int set = 0; set < sets; ++set) {
        Rng rng{quint32(set)};
        const bool large = set % 50 == 0;
        const Case c = anyCase(rng, large ? 300 : 60, large ? QSize(300, 200) : QSize(64, 40));
        const QString found = difference(c);
        if (!found.isEmpty())
            QFAIL(qPrintable(QStringLiteral("Set %1: %2").arg(set).arg(found)));
        if (set < 2000)
            painted += isBlank(referenceMap(c.photograph, c.parameters)) ? 0 : 1;
        composed += composedWithScalars(c).isNull() ? 0 : 1;
    }
    // Most sets must be such that the one pass is taken and something is to be seen.
    QVERIFY2(painted > 1000 || sets < 2000, qPrintable(QString::number(painted)));
    QVERIFY2(composed > sets / 2, qPrintable(QString::number(composed)));
}

void tst_ComposedMap::agreesForEverySmallSize()
{
    Rng rng(7);
    for (int width = 1; width <= 40; ++width)
        for (int height = 1; height <= 40; ++height) {
            Case c = anyCase(rng, 30, {40, 40});
            c.parameters.outputSizeX = width;
            c.parameters.outputSizeY = height;
            const QString found = difference(c);
            if (!found.isEmpty())
                QFAIL(qPrintable(QStringLiteral("%1 x %2: %3").arg(width).arg(height).arg(found)));
        }
}

void tst_ComposedMap::agreesForLargeAndOddSizes_data()
{
    QTest::addColumn<QSize>("size");
    for (const QSize &size :
         {QSize(1026, 133), QSize(1023, 111), QSize(8190, 31), QSize(8192, 2), QSize(2, 4096),
          QSize(32766, 3), QSize(32768, 2), QSize(4, 32767), QSize(40000, 1), QSize(1, 40000)})
        QTest::addRow("%d x %d", size.width(), size.height()) << size;
}

void tst_ComposedMap::agreesForLargeAndOddSizes()
{
    QFETCH(QSize, size);
    for (const Alpha alpha : {Alpha::Opaque, Alpha::Random}) {
        Rng rng(11);
        Case c;
        c.photograph = noisePhotograph(rng, {200, 200}, alpha);
        c.parameters = mapParameters({{100, 100}, 98, 6.6}, size, {35, 45, 30});
        // The shift of the operations ends at 32767 columns.
        if (size.width() > 32767 || size.height() > 32767) {
            c.parameters.longitude = -90;
            c.parameters.azimuth = 0;
        }
        QCOMPARE(difference(c), QString());
    }
}

void tst_ComposedMap::agreesAtEveryWholeDegree()
{
    Rng rng(13);
    Case c;
    c.photograph = noisePhotograph(rng, {60, 60}, Alpha::Random);
    c.parameters = mapParameters({{30, 30}, 29, 6.6}, {36, 18});
    for (int degree = -360; degree <= 360; ++degree) {
        c.parameters.latitude = degree;
        c.parameters.longitude = 2 * degree;
        c.parameters.azimuth = -degree;
        const QString found = difference(c);
        if (!found.isEmpty())
            QFAIL(qPrintable(QStringLiteral("%1 degrees: %2").arg(degree).arg(found)));
    }
}

void tst_ComposedMap::agreesWhereCoordinatesAreWhole_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<double>("latitude");
    // 45 columns more than one, or 90 rows: many whole degrees fall on a pixel.
    for (const QSize &size : {QSize(46, 46), QSize(180, 91), QSize(4, 3)})
        for (const double latitude : {89.5, 45.0, 0.0, -45.0, -90.0, -180.0, 60.0})
            QTest::addRow("%d x %d, latitude %g", size.width(), size.height(), latitude) << size << latitude;
}

void tst_ComposedMap::agreesWhereCoordinatesAreWhole()
{
    QFETCH(QSize, size);
    QFETCH(double, latitude);
    Rng rng(17);
    Case c;
    c.photograph = noisePhotograph(rng, {101, 101}, Alpha::Opaque);
    for (const double azimuth : {0.0, 90.0, 45.0})
        for (const double longitude : {-90.0, 0.0, 270.0}) {
            c.parameters = mapParameters({{50, 50}, 50, 100}, size, {latitude, longitude, azimuth});
            QCOMPARE(difference(c), QString());
        }
}

void tst_ComposedMap::agreesForCirclesThatLeaveThePhotograph_data()
{
    QTest::addColumn<QPoint>("center");
    QTest::newRow("left") << QPoint(20, 50);
    QTest::newRow("right") << QPoint(80, 50);
    QTest::newRow("up") << QPoint(50, 20);
    QTest::newRow("down") << QPoint(50, 80);
    QTest::newRow("corner") << QPoint(0, 0);
    QTest::newRow("centre outside") << QPoint(-10, 110);
    QTest::newRow("touching the last column and row") << QPoint(60, 60);
    QTest::newRow("one beyond the last column and row") << QPoint(61, 61);
    QTest::newRow("touching the first column and row") << QPoint(39, 39);
    QTest::newRow("one before the first column and row") << QPoint(38, 38);
    QTest::newRow("far away") << QPoint(100000, -100000);
    QTest::newRow("at the end of the numbers")
        << QPoint(std::numeric_limits<int>::max(), std::numeric_limits<int>::min());
}

void tst_ComposedMap::agreesForCirclesThatLeaveThePhotograph()
{
    QFETCH(QPoint, center);
    for (const Alpha alpha : {Alpha::Opaque, Alpha::Random, Alpha::Extreme})
        for (const int radius : {39, 40, 41, -39, 500, 40000}) {
            Rng rng(19);
            Case c;
            c.photograph = noisePhotograph(rng, {100, 100}, alpha);
            c.parameters = mapParameters({center, radius, 100}, {96, 48}, {35, 139, 30});
            QCOMPARE(difference(c), QString());
        }
}

void tst_ComposedMap::agreesWhereTheTopRowIsLost()
{
    for (const int photographHeight : {161, 103, 107, 187}) {
        Rng rng(23);
        Case c;
        c.photograph = noisePhotograph(rng, {21, photographHeight}, Alpha::Random);
        c.parameters = mapParameters({{10, photographHeight / 2}, 10, 6.6}, {32, 1024}, {35, 139});
        QCOMPARE(difference(c), QString());
    }
}

void tst_ComposedMap::ignoresTheUnusedBitsOfOpaquePhotographs()
{
    Rng rng(37);
    Case c;
    c.photograph = noisePhotograph(rng, {60, 60}, Alpha::Opaque);
    for (int y = 0; y < 60; ++y)
        for (int x = 0; x < 60; ++x)
            reinterpret_cast<QRgb *>(c.photograph.scanLine(y))[x] &= 0x00ffffffU | rng.word();
    for (const int width : {64, 63})
        for (const double latitude : {35.0, 90.0}) {
            c.parameters = mapParameters({{30, 30}, 29, 6.6}, {width, 32}, {latitude, 139, 30});
            QCOMPARE(difference(c), QString());
        }
}

void tst_ComposedMap::leavesWhatItDoesNotCover()
{
    PerspectiveParameters parameters;
    parameters.radius = 10;
    parameters.photographWidth = 20;
    parameters.photographHeight = 20;
    Rng rng(31);
    const QImage photograph = noisePhotograph(rng, {20, 20}, Alpha::Opaque);
    const ConstImageView pixels = {reinterpret_cast<const quint32 *>(photograph.constBits()), 20, 20, 20,
                                   0xff000000U};
    const auto covers = [&](QSize size, int radius) {
        parameters.radius = radius;
        parameters.ratioX = size.width() / 20.0;
        parameters.ratioY = size.height() / 40.0;
        QVector<quint32> canvas(size.width() * size.height());
        const bool covered = paintComposedMap(NearSidedPerspective(parameters), pixels, {0, 55, 0},
                                              {canvas.data(), size.width(), size.width(), size.height()}, {});
        return covered || std::count(canvas.begin(), canvas.end(), 0U) != canvas.size();
    };
    QVERIFY(covers({64, 32}, 10));
    QVERIFY(covers({64, 32}, 32767));
    QVERIFY(!covers({64, 32}, 40000));
    QVERIFY(!covers({63, 32}, 10));
    QVERIFY(!covers({64, 1}, 10));
    QVERIFY(!covers({32768, 2}, 10));
}

void tst_ComposedMap::tellsEveryRowOnceAndInOrder()
{
    PerspectiveParameters parameters;
    parameters.radius = 10;
    parameters.centerX = parameters.centerY = 10;
    parameters.photographWidth = parameters.photographHeight = 20;
    parameters.ratioX = 64 / 20.0;
    parameters.ratioY = 100 / 40.0;
    const NearSidedPerspective perspective(parameters);
    QVector<quint32> photograph(400, 0xffffffffU);
    QVector<quint32> canvas(64 * 100);
    QVector<int> told;
    const auto rowsOnceTold = [&](int rows) {
        told.append(rows);
        canvas.fill(0xff00ff00U); // what an event does to the canvas must not be read again
    };
    QVERIFY(paintComposedMap(perspective, {photograph.data(), 20, 20, 20, 0xff000000U}, {0, 55, 0},
                             {canvas.data(), 64, 64, 100}, {rowsOnceTold, {}, {}}));
    QVERIFY(told.size() > 1);
    QVERIFY(std::is_sorted(told.begin(), told.end()));
    QCOMPARE(told.last(), 50 - int(perspective.edgeRow()));
    QCOMPARE(canvas.count(0xff00ff00U), canvas.size());
}

QTEST_GUILESS_MAIN(tst_ComposedMap)
#include "tst_composedmap.moc"
