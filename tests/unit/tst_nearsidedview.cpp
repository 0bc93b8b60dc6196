#include "nearsidedview.h"

#include <QPoint>
#include <QSize>
#include <QtTest>

#include <cmath>
#include <limits>
#include <vector>

using namespace projection;

namespace
{

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

/// A photograph of some height, and a map with so many rows of 90 degrees and 360 columns.
PerspectiveParameters withRows(int rows, int photographHeight, double distance, int radius = 0)
{
    PerspectiveParameters parameters;
    parameters.radius = radius;
    parameters.distance = distance;
    parameters.photographWidth = 1;
    parameters.photographHeight = photographHeight;
    parameters.ratioX = 360;
    parameters.ratioY = rows / double(photographHeight);
    return parameters;
}

} // namespace

class tst_NearSidedPerspective : public QObject
{
    Q_OBJECT

private slots:
    void rowsBeginAtTheVisibleEdge_data();
    void rowsBeginAtTheVisibleEdge();
    void noRowFromTheSurfaceAndBelow_data();
    void noRowFromTheSurfaceAndBelow();
    void noRowForImpossibleRatios_data();
    void noRowForImpossibleRatios();
    void topRowIsLostWhereTheProductFallsShort_data();
    void topRowIsLostWhereTheProductFallsShort();
    void radiusIsThatOfTheViewingRay_data();
    void radiusIsThatOfTheViewingRay();
    void correctionShortensTheOuterPart_data();
    void correctionShortensTheOuterPart();
    void piecesOfTheCorrectionJoin();
    void radiusWithoutDiscIsNoNumber();
    void columnsLookRoundTheDisc_data();
    void columnsLookRoundTheDisc();
    void tablesEndAtTheirLength_data();
    void tablesEndAtTheirLength();
};

void tst_NearSidedPerspective::rowsBeginAtTheVisibleEdge_data()
{
    QTest::addColumn<double>("distance");
    QTest::addColumn<int>("edgeRow");
    QTest::newRow("distance 100: row 8") << 100.0 << 8;
    QTest::newRow("distance 6.6: row 54") << 6.6 << 54;
    QTest::newRow("distance 2: row 175") << 2.0 << 175;
    QTest::newRow("from infinity: the five rows of the margin") << infinity << 5;
}

void tst_NearSidedPerspective::rowsBeginAtTheVisibleEdge()
{
    QFETCH(double, distance);
    QFETCH(int, edgeRow);
    for (const int photographHeight : {9, 512}) {
        const NearSidedPerspective perspective(withRows(512, photographHeight, distance));
        QCOMPARE(perspective.edgeRow(), int64_t(edgeRow));
        QVERIFY(perspective.hasRow(perspective.edgeRow()));
        QVERIFY(perspective.hasRow(511));
        QVERIFY(!perspective.hasRow(512));
    }
}

void tst_NearSidedPerspective::noRowFromTheSurfaceAndBelow_data()
{
    QTest::addColumn<double>("distance");
    for (const double distance :
         {1.0, 0.999, 0.5, 0.0, -0.0, -0.5, -1.0, -6.6, -1e300, -infinity, notANumber})
        QTest::addRow("distance %g", distance) << distance;
}

void tst_NearSidedPerspective::noRowFromTheSurfaceAndBelow()
{
    QFETCH(double, distance);
    // With 169 rows the edge of the cap falls a hair short of the pole, so that a row of its own would remain.
    for (const int rows : {1, 49, 512})
        for (const int photographHeight : {1, 169}) {
            const NearSidedPerspective perspective(withRows(rows, photographHeight, distance));
            QVERIFY(!perspective.hasRow(perspective.edgeRow()));
        }
}

void tst_NearSidedPerspective::noRowForImpossibleRatios_data()
{
    QTest::addColumn<double>("ratioY");
    for (const double ratio : {0.0, -1.0, 1e300, -1e300, infinity, -infinity, notANumber})
        QTest::addRow("ratio %g", ratio) << ratio;
}

void tst_NearSidedPerspective::noRowForImpossibleRatios()
{
    QFETCH(double, ratioY);
    PerspectiveParameters parameters = withRows(512, 9, 6.6);
    parameters.ratioY = ratioY;
    const NearSidedPerspective perspective(parameters);
    QVERIFY(!perspective.hasRow(perspective.edgeRow()));
}

void tst_NearSidedPerspective::topRowIsLostWhereTheProductFallsShort_data()
{
    QTest::addColumn<int>("photographHeight");
    QTest::addColumn<bool>("lost");
    for (const int height : {161, 103, 107, 187})
        QTest::addRow("height %d: lost", height) << height << true;
    for (const int height : {1, 100, 128, 160, 512, 1024})
        QTest::addRow("height %d: kept", height) << height << false;
}

void tst_NearSidedPerspective::topRowIsLostWhereTheProductFallsShort()
{
    QFETCH(int, photographHeight);
    QFETCH(bool, lost);
    const NearSidedPerspective perspective(withRows(512, photographHeight, 100));
    QVERIFY(perspective.hasRow(510));
    QCOMPARE(perspective.hasRow(511), !lost);
    QVERIFY(!perspective.hasRow(512));
}

void tst_NearSidedPerspective::radiusIsThatOfTheViewingRay_data()
{
    // With f = r sqrt(d d - 1) the point phi away from the centre appears at f sin(phi) / (d - cos(phi)).
    QTest::addColumn<double>("distance");
    QTest::addColumn<int>("row");
    QTest::addColumn<int>("pixels");
    QTest::newRow("6.6, last row") << 6.6 << 511 << 7;
    QTest::newRow("6.6, the row before") << 6.6 << 510 << 14;
    QTest::newRow("6.6, 0.352 of the radius") << 6.6 << 411 << 704;
    QTest::newRow("6.6, 0.6522 of the radius, just before the correction") << 6.6 << 311 << 1304;
    QTest::newRow("100, half way") << 100.0 << 256 << 1424;
    QTest::newRow("100, at the edge") << 100.0 << 8 << 1999;
    QTest::newRow("10.05, at the edge") << 10.05 << 41 << 1999;
}

void tst_NearSidedPerspective::radiusIsThatOfTheViewingRay()
{
    QFETCH(double, distance);
    QFETCH(int, row);
    QFETCH(int, pixels);
    const double radius = NearSidedPerspective(withRows(512, 1, distance, 2000)).radius(row);
    QCOMPARE(int(radius), pixels);
    // The definition goes by an arc tangent and its tangent, which only the last bits tell from the formula.
    const double phi = (90 - row * 90 / 512.0) * radiansPerDegree;
    const double seen =
        2000 * std::sqrt(distance * distance - 1) * std::sin(phi) / (distance - std::cos(phi));
    QVERIFY(std::abs(radius - seen) < 1e-9);
}

void tst_NearSidedPerspective::correctionShortensTheOuterPart_data()
{
    // At distance 6.6 and radius 2000 the correction begins at 1304.8 pixels and ends at 1487.4.
    QTest::addColumn<int>("row");
    QTest::addColumn<int>("pixels");
    QTest::newRow("seen at 1335.7: less a tenth of 30.9") << 305 << 1332;
    QTest::newRow("seen at 1386.2: less a tenth of 81.5") << 295 << 1378;
    QTest::newRow("seen at 1434.9: less a tenth of 130.2") << 285 << 1421;
    QTest::newRow("seen at 1481.8: less a tenth of 177.0") << 275 << 1464;
    QTest::newRow("seen at 1526.8: less 18.3") << 265 << 1508;
    QTest::newRow("seen at 1735: less 18.3") << 211 << 1717;
    QTest::newRow("seen at 1875: less 18.3") << 161 << 1857;
    QTest::newRow("at the edge, seen at 1999: less 18.3") << 54 << 1981;
}

void tst_NearSidedPerspective::correctionShortensTheOuterPart()
{
    QFETCH(int, row);
    QFETCH(int, pixels);
    QCOMPARE(int(NearSidedPerspective(withRows(512, 1, 6.6, 2000)).radius(row)), pixels);
}

// With rows this narrow a gap between two pieces, or a piece of another slope, is a step that no row makes.
void tst_NearSidedPerspective::piecesOfTheCorrectionJoin()
{
    const NearSidedPerspective perspective(withRows(100000, 1, 6.6, 2000));
    int64_t k = perspective.edgeRow();
    double outer = perspective.radius(k);
    QVERIFY(outer > 1980 && outer < 2000);
    for (++k; perspective.hasRow(k); ++k) {
        const double inner = perspective.radius(k);
        QVERIFY(inner < outer);
        QVERIFY(outer - inner < 0.04);
        outer = inner;
    }
    QVERIFY(outer < 0.04);
}

void tst_NearSidedPerspective::radiusWithoutDiscIsNoNumber()
{
    QVERIFY(std::isnan(NearSidedPerspective(withRows(512, 1, notANumber, 2000)).radius(100)));
    QVERIFY(std::isnan(NearSidedPerspective(withRows(512, 1, 0.5, 2000)).radius(100)));
}

void tst_NearSidedPerspective::columnsLookRoundTheDisc_data()
{
    QTest::addColumn<int>("column");
    QTest::addColumn<int>("degrees");
    QTest::addColumn<QPoint>("towards");
    QTest::newRow("rightmost column: left") << 359 << -180 << QPoint(-1, 0);
    QTest::newRow("a quarter from the right: above") << 269 << -90 << QPoint(0, -1);
    QTest::newRow("just left of the middle: right") << 179 << 0 << QPoint(1, 0);
    QTest::newRow("a quarter from the left: below") << 89 << 90 << QPoint(0, 1);
    QTest::newRow("leftmost column: left, a little below") << 0 << 179 << QPoint(-1, 0);
}

void tst_NearSidedPerspective::columnsLookRoundTheDisc()
{
    QFETCH(int, column);
    QFETCH(int, degrees);
    QFETCH(QPoint, towards);
    const CosineSine direction = NearSidedPerspective(withRows(512, 1, 6.6)).direction(column, 360);
    const CosineSine expected = cosineSine(degrees * radiansPerDegree);
    QVERIFY(direction.cosine == expected.cosine && direction.sine == expected.sine);
    QCOMPARE(QPoint(qRound(direction.cosine), qRound(direction.sine)), towards);
}

void tst_NearSidedPerspective::tablesEndAtTheirLength_data()
{
    QTest::addColumn<int>("mapWidth");
    QTest::addColumn<int>("length");
    QTest::newRow("no column") << 0 << 0;
    QTest::newRow("less than none") << -1 << 0;
    QTest::newRow("one column") << 1 << 1;
    QTest::newRow("the longest table") << longestAngleTable << longestAngleTable;
    QTest::newRow("one more: none") << longestAngleTable + 1 << 0;
}

void tst_NearSidedPerspective::tablesEndAtTheirLength()
{
    QFETCH(int, mapWidth);
    QFETCH(int, length);
    const NearSidedPerspective perspective(withRows(512, 1, 6.6));
    const std::vector<CosineSine> directions = perspective.directions(mapWidth);
    QCOMPARE(int(directions.size()), length);
    for (int x = 0; x < length; ++x) {
        const CosineSine direction = perspective.direction(x, mapWidth);
        QVERIFY(directions[size_t(x)].cosine == direction.cosine);
        QVERIFY(directions[size_t(x)].sine == direction.sine);
    }
}

QTEST_GUILESS_MAIN(tst_NearSidedPerspective)
#include "tst_nearsidedview.moc"
