#include "sphererotation.h"

#include <QPoint>
#include <QSize>
#include <QtTest>

#include <limits>

using namespace projection;

namespace
{

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr int smallest = std::numeric_limits<int>::min();

} // namespace

class tst_SphereRotation : public QObject
{
    Q_OBJECT

private slots:
    void unrotatedReadsUpToOnePixelBefore_data();
    void unrotatedReadsUpToOnePixelBefore();
    void readsWhereTheSphereSays_data();
    void readsWhereTheSphereSays();
    void everyOtherAxisIsTheFirst_data();
    void everyOtherAxisIsTheFirst();
    void directionWithoutLongitudeReadsNoColumn();
    void positionsLieInTheMap_data();
    void positionsLieInTheMap();
    void anglesAreTheSameWithAndWithoutATable_data();
    void anglesAreTheSameWithAndWithoutATable();
    void columnShiftIsTruncated_data();
    void columnShiftIsTruncated();
};

void tst_SphereRotation::unrotatedReadsUpToOnePixelBefore_data()
{
    QTest::addColumn<int>("axis");
    for (const int axis : {1, 2, 3})
        QTest::addRow("axis %d", axis) << axis;
}

// The angle of a column is measured in 360ths of the width, the column of an angle in 360ths of the width less one.
void tst_SphereRotation::unrotatedReadsUpToOnePixelBefore()
{
    QFETCH(int, axis);
    const SphereRotation rotation(axis, 0, 360, 180);
    for (int y = 0; y < 180; ++y)
        for (int x = 0; x < 360; ++x) {
            const MapPosition from = rotation.source(x, y);
            QCOMPARE(from.column, qMax(x - 1, 0));
            QCOMPARE(from.row, qMax(y - 1, 0));
        }
}

void tst_SphereRotation::readsWhereTheSphereSays_data()
{
    // On a map of 360 x 180 pixels column x is the longitude x and row y the latitude 90 - y, with z downwards.
    // What is read lies at 359 / 360 of the longitude and 179 / 180 of the colatitude, truncated.
    QTest::addColumn<int>("axis");
    QTest::addColumn<int>("angle");
    QTest::addColumn<QPoint>("at");
    QTest::addColumn<QPoint>("from");
    QTest::newRow("polar axis by 90: from longitude 10") << 2 << 90 << QPoint(100, 50) << QPoint(9, 49);
    QTest::newRow("polar axis by 90, left edge: from 270") << 2 << 90 << QPoint(0, 50) << QPoint(269, 49);
    QTest::newRow("polar axis by 90, right edge: from 269") << 2 << 90 << QPoint(359, 50) << QPoint(268, 49);
    QTest::newRow("polar axis by -90: from 190") << 2 << -90 << QPoint(100, 50) << QPoint(189, 49);
    QTest::newRow("polar axis by 450: as by 90") << 2 << 450 << QPoint(100, 50) << QPoint(9, 49);
    // (0.75, 0.433, 0.5) becomes (0.75, 0.5, -0.433): longitude 33.69, colatitude 64.34.
    QTest::newRow("axis 3 by 90, from the south-east") << 3 << 90 << QPoint(30, 120) << QPoint(33, 63);
    // (0.433, 0.75, -0.5) becomes (0.433, -0.5, -0.75): longitude 310.89, colatitude 41.41.
    QTest::newRow("axis 3 by 90, from the north-east") << 3 << 90 << QPoint(60, 60) << QPoint(310, 41);
    // (0, 1, 0) becomes (0, 0.866, -0.5): longitude 90, colatitude 60.
    QTest::newRow("axis 3 by 30, from the east") << 3 << 30 << QPoint(90, 90) << QPoint(89, 59);
    // (0.75, 0.433, 0.5) becomes (0.75, -0.433, -0.5): longitude 330, colatitude 60.
    QTest::newRow("axis 3 by 180") << 3 << 180 << QPoint(30, 120) << QPoint(329, 59);
    // (0.75, 0.433, 0.5) becomes (0.5, 0.433, -0.75): longitude 40.89, colatitude 41.41.
    QTest::newRow("axis 1 by 90") << 1 << 90 << QPoint(30, 120) << QPoint(40, 41);
    // (0.75, 0.433, 0.5) becomes (-0.75, 0.433, -0.5): longitude 150, colatitude 60.
    QTest::newRow("axis 1 by 180") << 1 << 180 << QPoint(30, 120) << QPoint(149, 59);
}

void tst_SphereRotation::readsWhereTheSphereSays()
{
    QFETCH(int, axis);
    QFETCH(int, angle);
    QFETCH(QPoint, at);
    QFETCH(QPoint, from);
    const MapPosition position = SphereRotation(axis, angle, 360, 180).source(at.x(), at.y());
    QCOMPARE(QPoint(position.column, position.row), from);
}

void tst_SphereRotation::everyOtherAxisIsTheFirst_data()
{
    QTest::addColumn<int>("axis");
    for (const int axis : {0, 4, -1, -3, 17, smallest, std::numeric_limits<int>::max()})
        QTest::addRow("code %d", axis) << axis;
}

void tst_SphereRotation::everyOtherAxisIsTheFirst()
{
    QFETCH(int, axis);
    const SphereRotation rotation(axis, 37, 40, 21);
    const SphereRotation first(1, 37, 40, 21);
    for (int y = 0; y < 21; ++y)
        for (int x = 0; x < 40; ++x) {
            QCOMPARE(rotation.source(x, y).column, first.source(x, y).column);
            QCOMPARE(rotation.source(x, y).row, first.source(x, y).row);
        }
}

// 45 degrees down on longitude 0, rotated by -135 about longitude 90, is exactly the pole.
void tst_SphereRotation::directionWithoutLongitudeReadsNoColumn()
{
    const SphereRotation rotation(1, -135, 4, 4);
    for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 4; ++x) {
            const int column = rotation.source(x, y).column;
            QCOMPARE(column < 0 || column >= 4, x == 0 && y == 1);
        }
}

void tst_SphereRotation::positionsLieInTheMap_data()
{
    QTest::addColumn<QSize>("size");
    for (const QSize &size :
         {QSize(1, 1), QSize(1, 9), QSize(9, 1), QSize(2, 2), QSize(63, 32), QSize(64, 33)})
        QTest::addRow("%d x %d", size.width(), size.height()) << size;
}

void tst_SphereRotation::positionsLieInTheMap()
{
    QFETCH(QSize, size);
    for (const int axis : {1, 2, 3})
        for (const int angle : {0, 35, 90, -90, 180, 359, smallest}) {
            const SphereRotation rotation(axis, angle, size.width(), size.height());
            for (int y = 0; y < size.height(); ++y)
                for (int x = 0; x < size.width(); ++x) {
                    const MapPosition from = rotation.source(x, y);
                    QVERIFY(from.column >= 0 && from.column < size.width());
                    QVERIFY(from.row >= 0 && from.row < size.height());
                }
        }
}

void tst_SphereRotation::anglesAreTheSameWithAndWithoutATable_data()
{
    QTest::addColumn<int>("side");
    QTest::newRow("the longest table") << longestAngleTable;
    QTest::newRow("one more: none") << longestAngleTable + 1;
}

void tst_SphereRotation::anglesAreTheSameWithAndWithoutATable()
{
    QFETCH(int, side);
    const SphereRotation wide(3, 10, side, 1);
    const SphereRotation tall(3, 10, 1, side);
    for (const int i : {0, 1, side / 3, side - 1}) {
        const CosineSine longitude = cosineSine(i * 360.0 / side * radiansPerDegree);
        QVERIFY(wide.column(i).cosine == longitude.cosine && wide.column(i).sine == longitude.sine);
        const CosineSine latitude = cosineSine((i * 180.0 / side - 90) * radiansPerDegree);
        QVERIFY(tall.row(i).cosine == latitude.cosine && tall.row(i).sine == latitude.sine);
    }
}

void tst_SphereRotation::columnShiftIsTruncated_data()
{
    QTest::addColumn<double>("angle");
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("columns");
    QTest::newRow("no angle") << 0.0 << 2048 << 0;
    QTest::newRow("a quarter") << 90.0 << 2048 << 512;
    QTest::newRow("a quarter to the left") << -90.0 << 2048 << -512;
    QTest::newRow("a quarter of an odd width") << 90.0 << 1023 << 255;
    QTest::newRow("to the left it is truncated too") << -90.0 << 1023 << -255;
    QTest::newRow("less than one column") << 0.1 << 2048 << 0;
    QTest::newRow("one column") << 0.18 << 2048 << 1;
    QTest::newRow("a whole turn is not taken off") << 360.0 << 2048 << 2048;
    QTest::newRow("a whole turn to the left") << -360.0 << 2048 << -2048;
    QTest::newRow("361 degrees are 1") << 361.0 << 2048 << 5;
    QTest::newRow("-361 degrees are -1") << -361.0 << 2048 << -5;
    QTest::newRow("721 degrees are 361: taken off once") << 721.0 << 360 << 361;
    QTest::newRow("-721 degrees are -361") << -721.0 << 360 << -361;
    QTest::newRow("no width") << 90.0 << 0 << 0;
    QTest::newRow("more than any int") << 1e300 << 2048 << smallest;
    QTest::newRow("less than any int") << -1e300 << 2048 << smallest;
    QTest::newRow("infinity") << infinity << 2048 << smallest;
    QTest::newRow("minus infinity") << -infinity << 2048 << smallest;
    QTest::newRow("no number") << notANumber << 2048 << smallest;
}

void tst_SphereRotation::columnShiftIsTruncated()
{
    QFETCH(double, angle);
    QFETCH(int, width);
    QFETCH(int, columns);
    QCOMPARE(columnShift(angle, width), columns);
}

QTEST_GUILESS_MAIN(tst_SphereRotation)
#include "tst_sphererotation.moc"
